#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Contest {

/// Keeps the best of all rounds of every contestant, and shows them beside each other.
class Report : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Markdown: for every operation a row a size and a column a contestant, then how far we are ahead.
  void printTables(std::ostream& out) const;

  /// The 64 KiB figures of this library, of the best peer and of memcpy, on a logarithmic scale.
  void drawChart(std::ostream& out) const;

 private:
  using Speeds = std::map<std::string, std::map<std::size_t, double>>;  // contestant, size: GB/s
  struct Operation {
    std::string name;
    Speeds speeds;
  };

  Operation& operation(const std::string& name);
  static void printTable(std::ostream& out, const Operation& operation);
  static std::pair<std::string, double> bestPeer(const Operation& operation, std::size_t size);

  std::vector<Operation> operations_;  // in the order of their first appearance
};

}  // namespace Contest
