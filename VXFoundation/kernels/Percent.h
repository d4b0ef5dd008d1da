#pragma once

namespace VXKernels {

/// The unreserved characters of RFC 3986, section 2.3, which percent-encoding leaves as they are.
struct CharacterSet {
  bool has[256];
};

constexpr CharacterSet unreservedCharacters() {
  CharacterSet set{};
  for (int c = 'a'; c <= 'z'; ++c) set.has[c] = true;
  for (int c = 'A'; c <= 'Z'; ++c) set.has[c] = true;
  for (int c = '0'; c <= '9'; ++c) set.has[c] = true;
  for (const char c : "-._~") set.has[static_cast<unsigned char>(c)] = c != '\0';
  return set;
}

}  // namespace VXKernels
