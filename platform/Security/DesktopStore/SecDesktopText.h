#pragma once

#include <map>
#include <string>
#include <string_view>

#include <Security/SecEntry.h>

/// UTF-8, overwritten when it is freed.
using SecDesktopText = std::basic_string<char, std::char_traits<char>, SecCleansingAllocator<char>>;
/// The attributes of an item: strings by their names.
using SecDesktopAttributes = std::map<std::string, SecDesktopText>;

/// What an item says of itself: everything but the secret, readable to every program on the bus.
struct SecDesktopProperties {
  SecDesktopAttributes attributes;
  SecDesktopText label;  // never empty: some services refuse an empty one
};

/// Returns whether a message can hold the bytes as a string: UTF-8 without NUL and without noncharacters.
bool secIsDesktopText(std::string_view bytes);

/// Returns the text as a string that every service keeps as it is; fails with errSecParam if there is none,
/// which is so for NUL, unpaired surrogates, noncharacters and a leading byte-order mark.
SecDesktopText secEncodeText(const SecText& text);

/// Returns the text of a string that came in a message, which sd-bus has checked.
SecText secDecodeText(std::string_view utf8);
