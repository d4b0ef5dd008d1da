#pragma once

#include <Foundation/NSData.h>
#include <VXFoundation/VXCodecKernels.h>
#include <benchmark/benchmark.h>

#include <QByteArray>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// Contests: one operation and the same input for every contestant, in sizes from a cache line to more than
/// the caches hold. A contestant that skips a check that this library makes is marked.
namespace Contest {

inline constexpr std::size_t sizes[] = {32, 1 << 10, 64 << 10, 16 << 20};
enum class Checks { all, fewer };
using Bytes = std::vector<std::byte>;

/// Random bytes, and English text of which about one character in six must be escaped in a URL.
Bytes randomBytes(std::size_t count);
Bytes prose(std::size_t count);
NSRef<NSData> dataOf(const Bytes& bytes);

/// The bytes as most libraries take them, and uninitialised memory for their results.
inline const unsigned char* raw(const Bytes& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}
inline const char* characters(const Bytes& bytes) { return reinterpret_cast<const char*>(bytes.data()); }
inline QByteArray viewForQt(const Bytes& bytes) {
  return QByteArray::fromRawData(characters(bytes), static_cast<int>(bytes.size()));
}
using Buffer = std::unique_ptr<unsigned char[]>;
inline Buffer buffer(std::size_t size) { return Buffer(new unsigned char[size]); }

/// What `prepare(size)` returns: the number of input bytes, and the callable that is timed.
template <class Run>
struct Trial {
  std::size_t input;
  Run run;
};
template <class Run>
Trial(std::size_t, Run) -> Trial<Run>;

inline std::string nameOf(const std::string& operation, const std::string& contestant, Checks checks) {
  return operation + "/" + contestant + (checks == Checks::fewer ? " *" : "");
}

template <class Prepare>
void contestant(const std::string& operation, const std::string& name, Checks checks, Prepare prepare) {
  for (const std::size_t size : sizes)
    benchmark::RegisterBenchmark(
        (nameOf(operation, name, checks) + "/" + std::to_string(size)).c_str(),
        [prepare, size](benchmark::State& state) {
          auto trial = prepare(size);
          for (auto _ : state) benchmark::DoNotOptimize(trial.run());
          state.SetBytesProcessed(static_cast<std::int64_t>(trial.input) * state.iterations());
        });
}

/// A contestant whose operation takes the `size` bytes that `make(size)` returned beforehand.
template <class Make, class Operation>
void contestant(const std::string& operation, const std::string& name, Checks checks, Make make,
                Operation call) {
  contestant(operation, name, checks, [make, call](std::size_t size) {
    return Trial{size, [call, input = make(size)] { return call(input); }};
  });
}

/// This library, with the set of kernels that it picks and with each of the others by name.
template <class Prepare>
void ours(const std::string& operation, Prepare prepare) {
  const auto sets = VXCodecKernelsAvailable();
  for (const std::string& set : sets) {
    const bool picked = set == sets.back();
    contestant(operation, picked ? "VXFoundation" : "VXFoundation " + set, Checks::all,
               [prepare, set](std::size_t size) {
                 VXCodecKernelsUse(set);
                 return prepare(size);
               });
  }
}

}  // namespace Contest
