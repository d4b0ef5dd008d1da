#pragma once

#include <thread>
#include <vector>

/// Calls `body(number)` on `count` threads at once and waits for all of them.
template <class Body>
void onThreads(std::size_t count, Body&& body) {
  std::vector<std::thread> threads;
  for (std::size_t number = 0; number < count; ++number)
    threads.emplace_back([&body, number] { body(number); });
  for (std::thread& thread : threads) thread.join();
}
