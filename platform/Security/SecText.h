#pragma once

#include <string_view>
#include <vector>

#include <Security/SecMemory.h>

/// The text of an attribute: UTF-16 code units, unpaired surrogates included. Unlike std::u16string, it never
/// keeps units inside the object itself, where they would stay on the stack: all are in memory that is
/// overwritten when it is freed. Not thread-safe; may be read by several threads at once.
class SecText : public std::vector<char16_t, SecCleansingAllocator<char16_t>> {
 public:
  using vector::vector;
  /// A copy of the units.
  SecText(std::u16string_view units) : vector(units.begin(), units.end()) {}
  /// The units in place, valid until the text is changed or destroyed.
  operator std::u16string_view() const { return {data(), size()}; }
};
