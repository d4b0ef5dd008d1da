#include <iostream>

#include "tests/support/Files.h"
#include "tests/support/Fuzz.h"

// Runs a target without a fuzzer, on every file in the folders.
//
//   TARGET FOLDER...
namespace {

int replay(const std::filesystem::path& folder) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    fuzzWith(readFile(entry.path()));
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
