#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <type_traits>

#include <Foundation/NSObject.h>

/// The content of an object: units that start in the object's own block, so that a short result costs one
/// allocation, and move out when they outgrow it. Units are neither constructed nor destroyed, only moved. A
/// storage that holds a secret cleanses every block that it leaves.
template <class Unit>
class NSStorage {
  static_assert(std::is_trivially_copyable_v<Unit>);
  // NOLINTNEXTLINE(bugprone-sizeof-expression): units may be pointers, and their own size is meant.
  static constexpr std::size_t unitSize = sizeof(Unit);

 public:
  /// Starts empty, in the tail, which must be aligned for the units.
  explicit NSStorage(NSTail tail) noexcept
      : units_(reinterpret_cast<Unit*>(tail.start)), capacity_(tail.size / unitSize) {}
  NSStorage(const NSStorage&) = delete;
  NSStorage& operator=(const NSStorage&) = delete;
  ~NSStorage() { leave(); }

  /// Returns the number of bytes that `count` units need; throws std::bad_alloc if that overflows.
  static std::size_t bytesFor(std::size_t count) {
    if (count > (std::numeric_limits<std::size_t>::max)() / unitSize) throw std::bad_alloc();
    return count * unitSize;
  }

  /// Returns the units in place, valid until they move out; their number; and how many there is room for.
  ///@{
  std::span<Unit> units() const noexcept { return {units_, count_}; }
  std::size_t count() const noexcept { return count_; }
  std::size_t capacity() const noexcept { return capacity_; }
  ///@}

  /// Truncates the units, or adds uninitialised ones.
  void setCount(std::size_t count) {
    reserve(count);
    count_ = count;
  }

  /// Adds `count` uninitialised units at the end and returns a pointer to the first of them.
  Unit* grow(std::size_t count) {
    if (count > (std::numeric_limits<std::size_t>::max)() - count_) throw std::bad_alloc();
    if (count_ + count > capacity_) reserve((std::max)(count_ + count, count_ + count_ / 2 + 8));
    count_ += count;
    return units_ + (count_ - count);
  }

  /// Appends a copy of the units, which may be this storage's own.
  void append(std::span<const Unit> added) {
    if (added.empty()) return;
    // Growing would move this storage's own units away.
    if (added.data() >= units_ && added.data() < units_ + count_) {
      const std::ptrdiff_t offset = added.data() - units_;
      Unit* place = grow(added.size());
      std::memmove(place, units_ + offset, added.size_bytes());
    } else {
      std::memcpy(grow(added.size()), added.data(), added.size_bytes());
    }
  }

  /// Makes room for `capacity` units in all; throws std::bad_alloc.
  void reserve(std::size_t capacity) {
    if (capacity <= capacity_) return;
    auto* moved = static_cast<Unit*>(::operator new(bytesFor(capacity)));
    if (count_ > 0) std::memcpy(moved, units_, count_ * unitSize);
    leave();
    units_ = moved;
    capacity_ = capacity;
    outgrown_ = true;
  }

  /// Whether every block that is left from now on is cleansed.
  ///@{
  bool holdsSecret() const noexcept { return secret_; }
  void setHoldsSecret(bool secret) noexcept { secret_ = secret; }
  ///@}

 private:
  void leave() noexcept {
    if (secret_ && capacity_ > 0) explicit_bzero(units_, capacity_ * unitSize);
    if (outgrown_) ::operator delete(units_);
  }

  Unit* units_;
  std::size_t count_ = 0;
  std::size_t capacity_;
  bool outgrown_ = false;
  bool secret_ = false;
};
