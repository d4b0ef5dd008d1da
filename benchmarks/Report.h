#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Contest {

/// Keeps the best round of every contestant and shows them side by side.
class Report : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Prints a table in Markdown for every operation: a row for each size, a column for each contestant and
  /// one for our ratio to the best peer.
  void printTables(std::ostream& out) const;

  /// Draws the 64 KiB figures of this library, the best peer and memcpy on a logarithmic scale.
  void drawChart(std::ostream& out) const;

 private:
  using Speeds = std::map<std::string, std::map<std::size_t, double>>;  // contestant, size: GB/s

  static void printTable(std::ostream& out, const std::string& operation, const Speeds& speeds);
  static std::pair<std::string, double> bestPeer(const Speeds& speeds, std::size_t size);

  std::map<std::string, Speeds> operations_;
};

}  // namespace Contest
