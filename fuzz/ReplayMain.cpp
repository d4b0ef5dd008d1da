#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "fuzz/Fuzz.h"

// Runs a target without a fuzzer, on every file of the folders that are named.
//
//   TARGET FOLDER...
namespace {

std::vector<char> contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  file.exceptions(std::ios::badbit);
  return {std::istreambuf_iterator<char>(file), {}};
}

int replay(const std::filesystem::path& folder) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::vector<char> content = contentOf(entry.path());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    ++inputs;
  }
  return inputs;
}

}  // namespace

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) inputs += replay(argv[i]);
  std::cout << inputs << " inputs replayed" << std::endl;
  return inputs > 0 ? 0 : 1;
}
