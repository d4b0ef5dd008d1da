#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

/// A new folder, removed by the destructor.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = parent / "vxfoundation.XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("cannot make a temporary folder");
    root = std::filesystem::canonical(name);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(root); }

  std::filesystem::path root;
};

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Overwrites the content of a file and keeps its mode.
inline void writeFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

/// Returns the number of names in a folder.
inline std::size_t namesIn(const std::filesystem::path& folder) {
  const std::filesystem::directory_iterator names(folder);
  return static_cast<std::size_t>(std::distance(begin(names), end(names)));
}
