// Does to credential stores what may befall them: SecFileFaults short|long [SCENARIO...].
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstring>

#include "Faults.h"

namespace {

struct Scenario {
  const char* name;
  void (*run)(Report& report, std::size_t amount);
  std::size_t inShort, inLong;  // rounds or changes, or every how many bytes or calls
};

constexpr Scenario scenarios[] = {
    {"kills", kills, 60, 1000},
    {"creations", creations, 20, 200},
    {"flips", flips, 41, 1},
    {"cuts", cuts, 97, 1},
    {"failures", failures, 23, 1},
    {"full-disk", fullDisk, 1, 10},
    {"processes", processes, 60, 1000},
    {"threads", threads, 60, 1000},
    {"stopped-holder", stoppedHolder, 1, 3},
    {"traces", traces, 1, 10},
};

bool run(const Scenario& scenario, bool longForm) {
  Report report;
  const auto start = std::chrono::steady_clock::now();
  scenario.run(report, longForm ? scenario.inLong : scenario.inShort);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  report.count("seconds", static_cast<std::size_t>(taken.count() + 0.5));
  return report.printAndJudge(scenario.name);
}

bool isAsked(const char* name, int count, char** names) {
  for (int index = 0; index < count; ++index)
    if (std::strcmp(name, names[index]) == 0) return true;
  return count == 0;
}

}  // namespace

int main(int count, char** arguments) {
  const bool longForm = count > 1 && std::strcmp(arguments[1], "long") == 0;
  if (!longForm && !(count > 1 && std::strcmp(arguments[1], "short") == 0)) return 2;
  // Without these there is no default place: whatever goes wrong here, the user's own store is not in reach.
  for (const char* variable : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) ::unsetenv(variable);
  bool held = true;
  std::size_t asked = 0;
  for (const Scenario& scenario : scenarios) {
    if (!isAsked(scenario.name, count - 2, arguments + 2)) continue;
    ++asked;
    held = run(scenario, longForm) && held;
  }
  return held && asked > 0 ? 0 : 1;
}

void Report::expect(bool holds, const std::string& what) {
  if (holds) return;
  if (++failures_ <= 20) std::fprintf(stderr, "FAULT: %s\n", what.c_str());
}

bool Report::printAndJudge(const std::string& scenario) const {
  std::printf("%-14s", scenario.c_str());
  for (const auto& [what, number] : figures_) std::printf(" %s %zu,", what.c_str(), number);
  std::printf(" faults %zu\n", failures_);
  std::fflush(stdout);
  return failures_ == 0 && !figures_.empty();
}

Held readAll(Report& report, const TemporaryPlace& temporary, const std::string& when) {
  Passwords passwords;
  Held held;
  const OSStatus opened = passwords.open(temporary.place, Passwords::refuse);
  report.expect(opened == errSecSuccess, when + ": does not open: " + std::to_string(opened));
  if (opened != errSecSuccess) return held;
  report.expect(passwords.storage->verify() == errSecSuccess, when + ": does not verify");
  report.expect(passwords.all(held) == errSecSuccess, when + ": cannot be read");
  return held;
}

pid_t inChild(const std::function<int()>& body) {
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::_exit(body());
}

int waitFor(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}
