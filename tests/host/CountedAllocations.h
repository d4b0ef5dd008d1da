#pragma once

#include <cstddef>

/// Returns how often the program that links this called operator new, including calls in the library.
std::size_t countedAllocations() noexcept;

template <class Action>
std::size_t allocationsOf(Action&& action) {
  const std::size_t before = countedAllocations();
  action();
  return countedAllocations() - before;
}
