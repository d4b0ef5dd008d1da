#include "tool/Progress.h"

#include <unistd.h>

#include <iostream>

namespace {

using namespace std::chrono_literals;

bool isTerminal(int descriptor) { return isatty(descriptor) == 1; }

std::string inMebibytes(std::size_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

}  // namespace

Progress::Progress(std::string work, std::optional<std::size_t> total, Output output)
    : work_(std::move(work)),
      total_(total),
      visible_(isTerminal(STDERR_FILENO) && !(output == Output::written && isTerminal(STDOUT_FILENO))),
      next_(Clock::now() + 2s) {}

Progress::~Progress() {
  if (shown_ == 0) return;
  show("");
  show("");
}

void Progress::advance(std::size_t bytes) {
  done_ += bytes;
  if (!visible_ || Clock::now() < next_) return;
  next_ = Clock::now() + 500ms;
  show(work_ + ": " + inMebibytes(done_) + (total_ ? " of " + inMebibytes(*total_) : ""));
}

/// Overwrites the line that is shown.
void Progress::show(std::string line) {
  const std::size_t length = line.size();
  if (length < shown_) line.resize(shown_, ' ');
  std::cerr << '\r' << line << std::flush;
  shown_ = length;
}
