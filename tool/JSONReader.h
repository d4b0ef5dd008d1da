#pragma once

#include <Security/SecText.h>

#include <cstdint>
#include <string_view>

#include "tool/SecretText.h"

/// Reads JSON (RFC 8259) that may hold secrets, which general libraries for JSON leave in memory. Values are
/// read one after another in the order of the text; each function throws Failure, with the place, for
/// anything malformed, for a value of another type, and for more than 100 levels.
class JSONReader {
 public:
  enum class Type { object, array, string, number, boolean, null };

  /// The text must outlive the reader.
  explicit JSONReader(std::string_view json) : length_(json.size()), rest_(json) {}

  /// Returns the type of the next value, without reading it.
  Type type();
  /// Reads a string as UTF-16, unpaired surrogates included; bytes that are not UTF-8 become U+FFFD.
  SecText units();
  /// Reads a string as UTF-8; unpaired surrogates become U+FFFD, too.
  SecretText string() { return utf8Of(units()); }
  /// Reads a number, and returns it as it is written.
  std::string_view number();
  /// Reads a number that is a 64-bit integer, written without fraction and exponent.
  std::int64_t integer();
  /// Reads an object, and calls `each` with every name; `each` reads or skips the value.
  void forEachMember(auto&& each) {
    forEach('{', '}', [&] {
      const SecretText name = string();
      require(':');
      each(name.view());
    });
  }
  /// Reads an array, and calls `each` for every element, which it reads or skips.
  void forEachElement(auto&& each) { forEach('[', ']', each); }
  /// Reads the next value, whatever it is.
  void skip();
  /// Requires that nothing follows but white space.
  void end();

  /// Returns a string in UTF-8; unpaired surrogates become U+FFFD.
  static SecretText utf8Of(std::u16string_view units);
  /// Throws Failure with the place that has been reached.
  [[noreturn]] void fail() const;

 private:
  void forEach(char first, char last, auto&& each) {
    require(first);
    enter();
    for (bool isFirst = true; !take(last); isFirst = false) {
      if (!isFirst) require(',');
      each();
    }
    --depth_;
  }
  void enter();
  char peek();
  bool take(char expected);
  void require(char expected);
  bool skipAny(std::string_view characters);
  void word(std::string_view expected);
  void digits();
  void appendCharacter(SecText& units);
  void appendEscape(SecText& units);
  char16_t unit();

  const std::size_t length_;
  std::string_view rest_;
  int depth_ = 0;
};
