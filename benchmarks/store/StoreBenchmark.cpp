// The cost of a credential store's operations: medians, and for changes the median of the ratios to appending
// to a file and syncing it just before. store-benchmark FOLDER [--desktop]
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <stdexcept>

#include "Contestant.h"

namespace {

constexpr std::size_t rounds = 60;
constexpr std::size_t stranger = 1u << 30;

using Milliseconds = double;

Milliseconds timed(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

Milliseconds median(std::vector<Milliseconds> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

/// A file to which a line is appended and synced: the least that a durable change can cost on this disk.
class Journal {
 public:
  explicit Journal(const std::string& folder) : path_(folder + "/store-benchmark.append") {
    file_ = ::open(path_.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_TRUNC | O_CLOEXEC, 0600);
    if (file_ < 0) throw std::runtime_error("cannot write to " + path_);
  }
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal() {
    ::close(file_);
    ::unlink(path_.c_str());
  }
  void append() {
    const std::array<char, 256> line{};
    if (::write(file_, line.data(), line.size()) < 0 || ::fsync(file_) != 0)
      throw std::runtime_error("cannot sync");
  }

 private:
  std::string path_;
  int file_;
};

using Times = std::vector<Milliseconds>;

void print(const Contestant& contestant, std::size_t held, const char* operation, const Times& times,
           const Times& appends = {}) {
  std::printf("| %-27s | %6zu | %-7s | %8.3f ms |", contestant.name().c_str(), held, operation,
              median(times));
  Times ratios;
  for (std::size_t round = 0; round < std::min(times.size(), appends.size()); ++round)
    ratios.push_back(times[round] / appends[round]);
  ratios.empty() ? std::printf("       |\n") : std::printf(" %5.1f |\n", median(ratios));
  std::fflush(stdout);
}

void requireAnswer(bool right) {
  if (!right) throw std::runtime_error("a lookup returned a wrong result");
}

/// Returns the median of the look-ups.
Milliseconds compete(Contestant& contestant, std::size_t held, Journal& journal) {
  contestant.fill(held);
  Times appends, adds, updates, removes, hits, misses;
  for (std::size_t round = 0; round < rounds; ++round) {
    const std::size_t account = held + round;
    appends.push_back(timed([&] { journal.append(); }));
    adds.push_back(timed([&] { contestant.add(account); }));
    updates.push_back(timed([&] { contestant.update(account); }));
    removes.push_back(timed([&] { contestant.remove(account); }));
  }
  contestant.add(held);
  // Separate from the changes: after waiting for the disk, the caches are cold.
  for (std::size_t round = 0; round < rounds; ++round) {
    hits.push_back(timed([&] { requireAnswer(contestant.look(held > 0 ? round * 7919 % held : 0)); }));
    misses.push_back(timed([&] { requireAnswer(!contestant.look(stranger + round)); }));
  }
  contestant.remove(held);
  print(contestant, held, "append", appends);
  print(contestant, held, "add", adds, appends);
  print(contestant, held, "update", updates, appends);
  print(contestant, held, "delete", removes, appends);
  print(contestant, held, "look up", hits);
  print(contestant, held, "miss", misses);
  return median(hits);
}

void list(const std::string& folder) {
  constexpr std::size_t held = 10000;
  const Listing listing = makeListing(folder, held);
  Times rows, lists, ratios;
  for (std::size_t round = 0; round < rounds; ++round) {
    rows.push_back(timed([&] { requireAnswer(listing.rows() == held); }));
    lists.push_back(timed([&] { requireAnswer(listing.list() == held); }));
    ratios.push_back(lists.back() / rows.back());
  }
  std::printf("\nAll of %zu entries: rows %.3f ms, listed %.3f ms, %.2f times as long\n", held, median(rows),
              median(lists), median(ratios));
}

void rotate(const std::string& folder) {
  constexpr std::size_t held = 10000;
  Times writes, rotations, ratios;
  for (std::size_t round = 0; round < 9; ++round) {
    const Rotation rotation = makeRotation(folder, held);
    writes.push_back(timed(rotation.write));
    rotations.push_back(timed(rotation.rotate));
    ratios.push_back(rotations.back() / writes.back());
  }
  std::printf("\n%zu entries: written %.3f ms, rotated %.3f ms, %.2f times as long\n", held, median(writes),
              median(rotations), median(ratios));
}

void run(const std::string& folder, bool desktop) {
  Journal journal(folder);
  std::printf("| store                       |   held | what    |      median | to append and sync |\n");
  std::printf("|---|---|---|---|---|\n");
  std::vector<double> lookUps;
  for (const std::size_t held : {std::size_t{0}, std::size_t{1000}, std::size_t{10000}})
    for (const bool openedPerCall : {false, true}) {
      const Milliseconds ours = compete(*makeFileStore(folder, openedPerCall), held, journal);
      lookUps.push_back(ours / compete(*makeSQLiteAlone(folder, openedPerCall), held, journal));
    }
  if (desktop)
    for (const std::size_t held : {std::size_t{0}, std::size_t{1000}}) {
      compete(*makeDesktopStore(), held, journal);
      compete(*makeLibsecret(), held, journal);
    }
  std::printf("\nA look-up compared with SQLite's (kept open, per call; 0, 1000, 10000 entries):");
  for (const double ratio : lookUps) std::printf(" %.1f", ratio);
  std::printf("\n");
  list(folder);
  rotate(folder);
}

}  // namespace

int main(int count, char** arguments) try {
  if (count < 2) throw std::runtime_error("usage: store-benchmark FOLDER [--desktop]");
  run(arguments[1], count > 2 && std::strcmp(arguments[2], "--desktop") == 0);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "store-benchmark: %s\n", error.what());
  return 1;
}
