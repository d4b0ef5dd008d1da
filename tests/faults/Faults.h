#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>

#include "tests/support/SecFileTests.h"

/// What may befall credential stores. The short form of each test is run with all others, the long one where
/// VX_FAULTS is "long"; either prints what it tried.
class SecFileFaults : public testing::Test {
 protected:
  SecFileFaults();
  ~SecFileFaults() override;

  /// Rounds or changes, or every how many bytes or calls.
  static std::size_t inForm(std::size_t shortForm, std::size_t longForm);
};

/// Adds to a figure that the test ends with.
void count(const std::string& what, std::size_t number = 1);

using Held = std::map<std::string, std::string>;

/// Everything that a store holds, as a process sees it that has just opened it; also checks all of it.
Held readAll(const TemporaryPlace& temporary);

/// Runs `body` in a process of its own, which ends with what it gives.
pid_t inChild(const std::function<int()>& body);
/// Waits for a process; what it ended with, or the negative number of its signal.
int waitFor(pid_t child);
