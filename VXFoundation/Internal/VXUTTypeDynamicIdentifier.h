#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSString.h>

/// The pairs that a type identifier of the dynamic form packs. Allocates only for identifiers of more than
/// about six hundred characters. Immutable.
class VXUTTypeDynamicIdentifier {
 public:
  /// One piece "key=value" of the packed text, without a second equals sign.
  struct Pair {
    std::string_view key, value;
    bool operator==(const Pair&) const = default;
  };

  /// Unpacks the identifier, without the first five characters, "dyn.a", which are not checked.
  explicit VXUTTypeDynamicIdentifier(const NSString& identifier);
  VXUTTypeDynamicIdentifier(const VXUTTypeDynamicIdentifier&) = delete;
  VXUTTypeDynamicIdentifier& operator=(const VXUTTypeDynamicIdentifier&) = delete;

  /// Returns the packed text: 5 bits per character, most significant first, in a special alphabet (otherwise
  /// as in RFC 4648, section 6); bits left over at the end are ignored. Returns the empty string if the body
  /// has a character that is not in the alphabet, padding that is not at its end, or a length that no bytes
  /// encode to; no value if the bytes are not ASCII.
  std::optional<std::string_view> text() const { return text_; }

  /// Returns the pairs of the text, which are separated by ":", in the order of their keys. The last value of
  /// a repeated key counts; pieces that are not pairs are skipped.
  std::span<const Pair> pairs() const { return pairs_; }

  /// Returns whether the pair is one of them, in logarithmic time.
  bool has(const Pair& pair) const;

 private:
  void addPairs();
  void keepLastOfEachKey();

  std::array<std::byte, 1024> room_;
  std::pmr::monotonic_buffer_resource pool_{room_.data(), room_.size()};
  std::pmr::string bytes_{&pool_};
  std::optional<std::string_view> text_;
  std::pmr::vector<Pair> pairs_{&pool_};
};
