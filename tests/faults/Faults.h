#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>

#include "../SecFileTests.h"

/// What a scenario found. Each expectation that does not hold is printed, and fails the run.
class Report {
 public:
  void expect(bool holds, const std::string& what);
  /// A figure for the line that the scenario ends with.
  void count(const std::string& what, std::size_t number = 1) { figures_[what] += number; }
  bool printAndJudge(const std::string& scenario) const;

 private:
  std::map<std::string, std::size_t> figures_;
  std::size_t failures_ = 0;
};

using Held = std::map<std::string, std::string>;

/// Everything that a store holds, as a process sees it that has just opened it; also checks all of it.
Held readAll(Report& report, const TemporaryPlace& temporary, const std::string& when);

/// Runs `body` in a process of its own, which ends with what it gives.
pid_t inChild(const std::function<int()>& body);
/// Waits for a process; what it ended with, or the negative number of its signal.
int waitFor(pid_t child);

void kills(Report& report, std::size_t rounds);
void creations(Report& report, std::size_t rounds);
void flips(Report& report, std::size_t step);
void cuts(Report& report, std::size_t step);
void failures(Report& report, std::size_t step);
void fullDisk(Report& report, std::size_t rounds);
void processes(Report& report, std::size_t changes);
void threads(Report& report, std::size_t changes);
void stoppedHolder(Report& report, std::size_t rounds);
void traces(Report& report, std::size_t rounds);
