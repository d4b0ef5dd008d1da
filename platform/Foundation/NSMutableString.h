#pragma once

#include <Foundation/NSString.h>

/// A mutable string. Its content starts in the object's own block and as ASCII, and becomes UTF-16 with the
/// first code unit that is not ASCII. For one thread at a time.
class NS_EXPORT NSMutableString : public NSString::Subclass<NSMutableString> {
 public:
  /// Returns an empty string with room for `capacity` ASCII characters in its own block.
  ///@{
  static NSRef<NSMutableString> string() { return stringWithCapacity(0); }
  static NSRef<NSMutableString> stringWithCapacity(std::size_t capacity);
  ///@}
  /// Returns a new string with the same content; nil raises the invalid-argument exception.
  static NSRef<NSMutableString> stringWithString(NSStringArg text);

  /// Appends a string, which may be this one, any code units, or a filled-in format. Nil, and a format that
  /// does not fit its arguments, raise the invalid-argument exception and change nothing. A secret string
  /// makes this one a secret, too; an argument of a format does not.
  ///@{
  void appendString(NSStringArg tail);
  void appendCharacters(std::u16string_view units);
  template <class... Arguments>
  void appendFormat(NSStringArg format, const Arguments&... arguments) {
    appendString(stringWithFormat(format, arguments...));
  }
  ///@}

  /// Returns an immutable string with the current content.
  NSRef<NSString> copy() const { return fixedCopy(); }

 protected:
  /// How a mutable string is created and copied.
  ///@{
  explicit NSMutableString(NSTail tail) : Subclass(tail, false) {}
  NSRef<NSString> fixedCopy() const override;
  ///@}

 private:
  using Subclass = NSString::Subclass<NSMutableString>;

  void append(std::string_view units);
  void append(std::u16string_view units);
  void widen();
};
