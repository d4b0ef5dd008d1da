#pragma once

#include <VXFoundation/Internal/VXUTTypeDynamicIdentifier.h>

#include "tests/support/Notations.h"

/// The digits of dynamic type identifiers, five bits each.
inline constexpr std::string_view dynamicAlphabet = "abcdefghkmnpqrstuvwxyz0123456789";

/// Returns the identifier that packs the text.
inline std::string packed(std::string_view text) { return "dyn.a" + digitsByRule(text, dynamicAlphabet, 5); }

/// Returns the pairs of an identifier, in the order of their keys; "nil" if it packs no text.
inline std::string shownPairs(const NSString& identifier) {
  const VXUTTypeDynamicIdentifier unpacked(identifier);
  if (!unpacked.text()) return "nil";
  std::string shown;
  for (const auto& [key, value] : unpacked.pairs())
    shown.append(shown.empty() ? "" : "; ").append(key).append(" = ").append(value);
  return "{" + shown + "}";
}
