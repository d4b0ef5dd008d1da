#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

/// Hashes strings of either kind alike. Not noexcept, because the standard library then keeps the hashes:
/// keys are long.
struct UTStringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

/// Values by strings, found by a string_view.
template <class Value>
using UTStringMap = std::unordered_map<std::string, Value, UTStringHash, std::equal_to<>>;
