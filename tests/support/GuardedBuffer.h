#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>

/// Memory between two inaccessible pages: code that reads or writes past the end of a span that `last`
/// returns without a gap crashes at once.
template <class Unit>
class GuardedBuffer {
 public:
  explicit GuardedBuffer(std::size_t capacity)
      : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / sizeof(Unit)),
        room_((capacity + page_ - 1) / page_ * page_),
        map_(mmap(nullptr, bytes(room_ + 2 * page_), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (map_ == MAP_FAILED || mprotect(begin(), bytes(room_), PROT_READ | PROT_WRITE) != 0)
      throw std::bad_alloc();
  }
  ~GuardedBuffer() { munmap(map_, bytes(room_ + 2 * page_)); }
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  /// Returns `count` units that end `gap` units before the inaccessible page, or begin `gap` units after the
  /// other one.
  ///@{
  std::span<Unit> last(std::size_t count, std::size_t gap = 0) const {
    return {begin() + room_ - gap - count, count};
  }
  std::span<Unit> first(std::size_t count, std::size_t gap = 0) const { return {begin() + gap, count}; }
  ///@}

  void fill(Unit mark) const { std::fill_n(begin(), room_, mark); }

  /// Returns whether everything outside the part still holds the mark that it was filled with.
  bool isFilledAround(std::span<const Unit> part, Unit mark) const {
    const auto isMark = [mark](Unit unit) { return unit == mark; };
    return std::all_of<const Unit*>(begin(), part.data(), isMark) &&
           std::all_of<const Unit*>(part.data() + part.size(), begin() + room_, isMark);
  }

 private:
  static std::size_t bytes(std::size_t units) { return units * sizeof(Unit); }
  Unit* begin() const { return static_cast<Unit*>(map_) + page_; }

  std::size_t page_, room_;  // in units
  void* map_;
};
