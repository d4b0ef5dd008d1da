#include "Contest.h"

#include <fstream>
#include <iostream>
#include <random>
#include <string_view>

#include "Report.h"

namespace Contest {

Bytes randomBytes(std::size_t count) {
  std::mt19937_64 random(count);
  Bytes bytes(count);
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(random());
  return bytes;
}

Bytes prose(std::size_t count) {
  constexpr std::string_view sentence =
      "Whoever sends a question, a name or a price through a form sends words, spaces and a mark or two. ";
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::byte>(sentence[i % sentence.size()]);
  return bytes;
}

NSRef<NSData> dataOf(const Bytes& bytes) { return NSData::dataWithBytes(bytes); }

}  // namespace Contest

void registerBase64();
void registerBase32();
void registerBase16();
void registerURLCoding();
void registerDigests();
void registerUnicode();

/// contest [--benchmark_... options] [DIRECTORY]: prints the tables, and writes codecs.svg into DIRECTORY.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  registerBase64();
  registerBase32();
  registerBase16();
  registerURLCoding();
  registerDigests();
  registerUnicode();
  Contest::Report report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.printTables(std::cout);
  if (argc > 1) {
    std::ofstream chart(std::string(argv[1]) + "/codecs.svg");
    report.drawChart(chart);
    if (!chart.flush()) {
      std::cerr << "the chart could not be written to " << argv[1] << "\n";
      return 1;
    }
  }
  return 0;
}
