#pragma once

#include "tests/support/Notations.h"

/// The digits of dynamic type identifiers, five bits each.
inline constexpr std::string_view dynamicAlphabet = "abcdefghkmnpqrstuvwxyz0123456789";

/// Returns the identifier that packs the text.
inline std::string packed(std::string_view text) { return "dyn.a" + digitsByRule(text, dynamicAlphabet, 5); }
