#pragma once

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

/// The rows of tests/vectors/NAME: columns between tabs; "#" begins a comment line. In a column, "\xNN" is
/// a byte and "\\" a backslash.
inline std::vector<std::vector<std::string>> vectorFile(const std::string& name) {
  std::ifstream file(VX_VECTORS "/" + name);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> columns(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
      const bool escape = line[i] == '\\';
      if (line[i] == '\t') {
        columns.emplace_back();
      } else if (escape && line.at(i + 1) == 'x') {
        columns.back().push_back(static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16)));
        i += 3;
      } else {
        columns.back().push_back(line[i += escape]);
      }
    }
    rows.push_back(std::move(columns));
  }
  if (rows.empty()) throw std::runtime_error("no vectors in " + name);
  return rows;
}
