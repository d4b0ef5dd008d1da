// What opening a store costs, by a key file and by the desktop's credential service: medians, in turn.
//   tests/desktop/on gnome-keyring store-opening-benchmark FOLDER
#include <Security/SecFileStorage.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr std::size_t rounds = 60;

void require(OSStatus status) {
  if (status != errSecSuccess)
    throw std::runtime_error(std::to_string(status) + ": " + secStatusMessage(status));
}

double open(const SecFilePlace& place) {
  std::unique_ptr<SecFileStorage> storage;
  const auto start = std::chrono::steady_clock::now();
  require(SecFileStorage::open(place, SecFileStorage::Missing::refuse, storage));
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  require(storage->verify());  // only an unlocked store can be verified
  return time.count();
}

double median(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

void run(const std::string& folder) {
  const SecFilePlace place{folder + "/data/credentials.store", folder + "/keys", true};
  SecFilePlace withoutKeyFile = place;
  withoutKeyFile.keyFolder = folder + "/none";
  std::unique_ptr<SecFileStorage> storage;
  require(SecFileStorage::open(place, SecFileStorage::Missing::make, storage));
  require(storage->addDesktop({}));
  storage.reset();
  std::vector<double> byKeyFile, byDesktop;
  for (std::size_t round = 0; round < rounds; ++round) {
    byKeyFile.push_back(open(place));
    byDesktop.push_back(open(withoutKeyFile));
  }
  std::printf("opened by the key file  %6.2f ms\nopened by the desktop   %6.2f ms\n", median(byKeyFile),
              median(byDesktop));
}

}  // namespace

int main(int count, char** arguments) try {
  if (count != 2) throw std::runtime_error("usage: store-opening-benchmark FOLDER");
  std::string folder = std::string(arguments[1]) + "/store-opening.XXXXXX";
  if (!::mkdtemp(folder.data())) throw std::runtime_error("cannot make a folder");
  run(folder);
  std::filesystem::remove_all(folder);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "store-opening-benchmark: %s\n", error.what());
  return 1;
}
