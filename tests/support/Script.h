#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>

/// Returns what precedes and what follows the first `at`.
inline std::pair<std::string, std::string> cut(const std::string& whole, const std::string& at) {
  const std::size_t place = whole.find(at);
  if (place == std::string::npos) return {whole, ""};
  return {whole.substr(0, place), whole.substr(place + at.size())};
}

/// Runs a script of tests/scripts and returns the number of its steps. A case starts with its title in
/// brackets, for which `begin` is called; each line after it is a step, "operation -> result", passed to
/// `step` in these two parts. Empty lines and lines that start with # are ignored.
template <class Begin, class Step>
std::size_t runScript(const std::string& name, Begin&& begin, Step&& step) {
  std::ifstream script(std::string(VX_TESTS) + "/scripts/" + name);
  std::size_t steps = 0, number = 0;
  for (std::string line, title; std::getline(script, line);) {
    ++number;
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      title = line;
      begin();
      continue;
    }
    SCOPED_TRACE(name + ":" + std::to_string(number) + ": " + title + "\n  " + line);
    const auto [operation, result] = cut(line, " -> ");
    step(operation, result);
    ++steps;
  }
  return steps;
}
