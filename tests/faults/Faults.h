#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/SecFileTests.h"

/// What can happen to a credential store. Each test has a short form, and a long one if VX_FAULTS is "long";
/// both print what they tried.
class SecFileFaults : public testing::Test {
 public:
  /// Returns the number for the form that runs.
  static std::size_t inForm(std::size_t shortForm, std::size_t longForm);

 protected:
  SecFileFaults();
  ~SecFileFaults() override;
};

/// Adds to a figure that the test prints at its end.
void count(const std::string& what, std::size_t number = 1);

using Held = std::map<std::string, std::string>;

/// Opens an existing store, with one of the passphrases here if it is locked.
OSStatus openAny(const TemporaryPlace& temporary, Passwords& passwords);
/// Opens a store, verifies it and returns everything that it holds.
Held readAll(const TemporaryPlace& temporary);

/// A change of who can open a store.
struct Rekeying {
  const char* name;
  OSStatus (*prepare)(const TemporaryPlace& temporary, Passwords& passwords);
  OSStatus (*act)(Passwords& passwords);
};
extern const std::vector<Rekeying> rekeyings;

/// The exit status of a process that may not mount what a test needs.
constexpr int notAllowed = 77;
/// Gives the process mounts of its own, and returns whether the system allows that.
bool hasOwnMounts();

/// Runs `body` in a child process, whose exit status is the result.
pid_t inChild(const std::function<int()>& body);
/// Waits for a process; returns its exit status, or the negative number of its signal.
int waitFor(pid_t child);
