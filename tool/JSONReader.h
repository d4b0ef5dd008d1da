#pragma once

#include <optional>
#include <string_view>

#include "tool/SecretText.h"

/// Reads JSON (RFC 8259) that may hold secrets, which general libraries for JSON leave in memory. Values are
/// read one after another in the order of the text; each function throws Failure for anything malformed, for
/// a value of another type, and for more than 100 levels.
class JSONReader {
 public:
  enum class Type { object, array, string, number, boolean, null };

  /// The text must outlive the reader.
  explicit JSONReader(std::string_view json) : rest_(json) {}

  /// Returns the type of the next value, without reading it.
  Type type();
  /// Reads a string as UTF-8: bytes that are not UTF-8 and unpaired surrogates become U+FFFD.
  SecretText string();
  /// Returns the next number as it is written.
  std::string_view number();
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
  void word(std::string_view expected);
  void digits();
  void appendCharacter(SecretText& text);
  void appendEscape(SecretText& text);
  char16_t unit();

  std::string_view rest_;
  int depth_ = 0;
};
