#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

/// Shows on standard error how far the work has come, if that is a terminal and the work takes more than two
/// seconds. At the end nothing of it stays on the terminal.
class Progress {
 public:
  /// Whether the work writes to standard output, which is then left alone if it is a terminal, too.
  enum class Output { none, written };

  /// `work` says what is being done; `total` is the number of bytes that it is done with, if that is known.
  explicit Progress(std::string work, std::optional<std::size_t> total = {}, Output output = Output::none);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Counts bytes that are done.
  void advance(std::size_t bytes);

 private:
  using Clock = std::chrono::steady_clock;
  void show(std::string line);

  const std::string work_;
  const std::optional<std::size_t> total_;
  const bool visible_;
  std::size_t done_ = 0;
  std::size_t shown_ = 0;  // the length of the line on the terminal
  Clock::time_point next_;
};
