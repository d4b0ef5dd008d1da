#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <VXFoundation/VXFoundation.h>

/// What the tests have in common.

/// The text of well-formed UTF-8 that is known only at run time.
inline NSRef<NSString> text(std::string_view utf8) { return NSString::stringWithUTF8String(utf8); }

/// The exception that `action` raises, if any.
template <class Action>
std::optional<NSException> exceptionOf(Action&& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception;
  }
  return {};
}

/// The name of the exception that `action` raises, or "nothing".
template <class Action>
std::string raised(Action&& action) {
  const auto exception = exceptionOf(action);
  return exception ? static_cast<std::string>(*exception->name()) : "nothing";
}

/// What a command of the shell that succeeds puts out.
inline std::string outputOf(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
  EXPECT_EQ(pclose(pipe), 0) << command;
  return output;
}

/// The rows of a table in tests/vectors: cells between tabs; empty lines and those that begin with # are
/// left out.
inline std::vector<std::vector<std::string>> vectors(const std::string& name) {
  std::ifstream file(std::string(VX_TESTS) + "/vectors/" + name);
  EXPECT_TRUE(file) << "no table " << name;
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    std::vector<std::string> cells{""};
    for (const char c : line)
      if (c == '\t')
        cells.emplace_back();
      else
        cells.back().push_back(c);
    rows.push_back(std::move(cells));
  }
  return rows;
}

/// What a cell says: "\xNN" is a byte, "\\" a backslash.
inline std::string unescaped(const std::string& cell) {
  std::string bytes;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell.compare(i, 2, "\\x") == 0) {
      bytes.push_back(static_cast<char>(std::stoi(cell.substr(i + 2, 2), nullptr, 16)));
      i += 3;
    } else {
      bytes.push_back(cell[cell[i] == '\\' ? ++i : i]);
    }
  }
  return bytes;
}

/// The same rows for tables whose cells are bytes.
inline std::vector<std::vector<std::string>> byteVectors(const std::string& name) {
  auto rows = vectors(name);
  for (auto& row : rows)
    for (auto& cell : row) cell = unescaped(cell);
  return rows;
}
