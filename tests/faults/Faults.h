#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>

#include "tests/support/SecFileTests.h"

/// What can happen to a credential store. Each test has a short form, and a long one if VX_FAULTS is "long";
/// both print what they tried.
class SecFileFaults : public testing::Test {
 protected:
  SecFileFaults();
  ~SecFileFaults() override;

  /// Returns the number for the form that runs.
  static std::size_t inForm(std::size_t shortForm, std::size_t longForm);
};

/// Adds to a figure that the test prints at its end.
void count(const std::string& what, std::size_t number = 1);

using Held = std::map<std::string, std::string>;

/// Opens a store, verifies it and returns everything that it holds.
Held readAll(const TemporaryPlace& temporary);

/// The exit status of a process that may not mount what a test needs.
constexpr int notAllowed = 77;
/// Gives the process mounts of its own, and returns whether the system allows that.
bool hasOwnMounts();

/// Runs `body` in a child process, whose exit status is the result.
pid_t inChild(const std::function<int()>& body);
/// Waits for a process; returns its exit status, or the negative number of its signal.
int waitFor(pid_t child);
