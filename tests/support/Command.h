#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

/// Returns the standard output of a shell command, which must succeed.
inline std::string outputOf(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
  EXPECT_EQ(pclose(pipe), 0) << command;
  return output;
}
