#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

/// Returns the rows of a table in tests/vectors: cells between tabs, without empty lines and lines that start
/// with #.
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

/// Returns the bytes that a cell stands for: "\xNN" is a byte, "\\" a backslash.
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

/// Returns the rows of a table whose cells are bytes.
inline std::vector<std::vector<std::string>> byteVectors(const std::string& name) {
  auto rows = vectors(name);
  for (auto& row : rows)
    for (auto& cell : row) cell = unescaped(cell);
  return rows;
}
