#pragma once

#include <cstddef>

/// How often the program that links this asked for memory by operator new, the library included.
std::size_t countedAllocations() noexcept;

template <class Action>
std::size_t allocationsOf(Action&& action) {
  const std::size_t before = countedAllocations();
  action();
  return countedAllocations() - before;
}
