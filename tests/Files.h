#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

/// A folder of its own, gone at the end. In memory where the system has such a place: what ends a process
/// there leaves what it would leave on a disk, many times faster.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    const char* const memory = "/dev/shm";
    std::string name = ::access(memory, W_OK) == 0 ? memory : std::filesystem::temp_directory_path().string();
    name += "/vxfoundation.XXXXXX";
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
