#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

/// A folder of its own, gone at the end.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = parent / "vxfoundation.XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
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

/// Writes over the content of a file and leaves its mode as it is.
inline void writeFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}
