#pragma once

#include <Foundation/NSString.h>

/// A text that grows. It starts in its own block and as ASCII, and becomes UTF-16 with the first unit
/// that is not. For one thread at a time.
class NS_EXPORT NSMutableString : public NSString::Subclass<NSMutableString> {
 public:
  /// Empty, with room for `capacity` ASCII characters in its own block.
  ///@{
  static NSRef<NSMutableString> string() { return stringWithCapacity(0); }
  static NSRef<NSMutableString> stringWithCapacity(std::size_t capacity);
  ///@}
  /// A new text of the same content; nil raises the invalid-argument exception.
  static NSRef<NSMutableString> stringWithString(NSStringArg text);

  /// Append a text, which may be this one, any code units, or a filled-in format. Nil, and a format that
  /// does not fit, raise the invalid-argument exception and change nothing. A secret text makes this one a
  /// secret, too; an argument of a format does not.
  ///@{
  void appendString(NSStringArg tail);
  void appendCharacters(std::u16string_view units);
  template <class... Arguments>
  void appendFormat(NSStringArg format, const Arguments&... arguments) {
    appendString(stringWithFormat(format, arguments...));
  }
  ///@}

  /// A fixed text of the content at this moment.
  NSRef<NSString> copy() const { return fixedCopy(); }

 protected:
  /// How the growable kind is made and copied.
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
