#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include <Foundation/NSArg.h>
#include <Foundation/NSFormat.h>
#include <Foundation/NSStorage.h>

class NSArray;
class NSData;
class NSMutableString;

/// The encodings of strings as bytes. They are strict: nothing is replaced or left out.
enum NSStringEncoding : unsigned {
  NSASCIIStringEncoding = 1,  ///< 7 bits
  NSUTF8StringEncoding = 4,   ///< RFC 3629
};

/// A string, counted and indexed in 16-bit code units, which may contain unpaired surrogates, NUL and a
/// leading byte-order mark. It is stored as 7-bit ASCII if all of it is ASCII, otherwise as UTF-16; that
/// never affects length, indexes, equality or hash. Immutable, so that any number of threads may use one at
/// once.
class NS_EXPORT NSString : public NSObject::Subclass<NSString> {
 public:
  /// Equal strings have equal hashes.
  using HashAgreesWithEquality = NSString;

  /// Returns the empty string.
  static NSRef<NSString> string();
  /// Returns the string as an immutable one; nil raises the invalid-argument exception.
  static NSRef<NSString> stringWithString(NSStringArg text);
  /// Returns nil for nil and for malformed UTF-8.
  ///@{
  [[nodiscard]] static NSRefPtr<NSString> stringWithUTF8String(std::string_view bytes);
  [[nodiscard]] static NSRefPtr<NSString> stringWithUTF8String(const char* bytes);
  ///@}
  /// Returns a string of any code units, including unpaired surrogates.
  static NSRef<NSString> stringWithCharacters(std::u16string_view units);
  /// initWithData:encoding:. Returns nil if the bytes are malformed in the encoding; nil data becomes the
  /// empty string. A string made from secret bytes holds a secret, too.
  [[nodiscard]] static NSRefPtr<NSString> stringWithData(const NSRefPtr<NSData>& data,
                                                         NSStringEncoding encoding);
  /// Returns a string of `length` ASCII characters that `write(std::span<char>)` writes in their final place.
  template <class Write>
  static NSRef<NSString> stringWithASCIILength(std::size_t length, Write&& write) {
    const NSRef<NSString> text = ofASCIILength(length);
    std::forward<Write>(write)(std::span(text->unitsAs<char>(), length));
    return text;
  }
  /// Returns the format, filled in as by NSFormat; raises the invalid-argument exception if the format is nil
  /// or the arguments do not fit.
  template <class... Arguments>
  static NSRef<NSString> stringWithFormat(NSStringArg format, const Arguments&... arguments) {
    return NSFormat(format, {NSFormatArg(arguments)...});
  }

  /// Returns the length in 16-bit code units.
  std::size_t length() const noexcept {
    return wide_ ? storage_.count() / sizeof(char16_t) : storage_.count();
  }
  /// Returns the code unit at `index`. Raises the range exception if `index` is not less than `length`.
  char16_t characterAtIndex(std::size_t index) const;
  /// Whether the code units are, or begin with, those of the other string; false for nil.
  ///@{
  bool isEqualToString(NSStringArg other) const;
  bool hasPrefix(NSStringArg prefix) const;
  ///@}

  /// Returns the string in UTF-8, or std::nullopt if a surrogate is unpaired.
  [[nodiscard]] std::optional<std::string> UTF8String() const;
  /// As UTF8String, but raises the invalid-argument exception if a surrogate is unpaired.
  explicit operator std::string() const;
  /// Returns the code units as they are.
  explicit operator std::u16string() const;
  /// Returns the encoded bytes, or nil if the string cannot be encoded: nothing is replaced. The bytes of a
  /// string that holds a secret hold one, too.
  [[nodiscard]] NSRefPtr<NSData> dataUsingEncoding(NSStringEncoding encoding) const;

  /// Returns the substring from `index` to the end. Raises the range exception if `index` is greater than
  /// `length`.
  NSRef<NSString> substringFromIndex(std::size_t index) const;
  /// Returns a new string with the tail, or the filled-in format, appended. Nil, and a format that does not
  /// fit its arguments, raise the invalid-argument exception.
  ///@{
  NSRef<NSString> stringByAppendingString(NSStringArg tail) const;
  template <class... Arguments>
  NSRef<NSString> stringByAppendingFormat(NSStringArg format, const Arguments&... arguments) const {
    return stringByAppendingString(stringWithFormat(format, arguments...));
  }
  ///@}
  /// Returns the pieces between the separators, in order: one more than there are separators, including empty
  /// ones. An empty separator leaves the string in one piece.
  NSRef<NSArray> componentsSeparatedByString(NSStringArg separator) const;

  /// Strings of the same code units are equal, whether immutable or mutable; nothing is normalised. Both
  /// functions take linear time.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override;
  ///@}
  /// Returns the string itself.
  NSRef<NSString> description() const override { return copy(); }
  /// As in NSObject; a copy of a secret is a secret, too.
  ///@{
  NSRef<NSString> copy() const { return fixedCopy(); }
  NSRef<NSMutableString> mutableCopy() const;
  ///@}

  /// Calls `visitor` with the units as they are stored, a std::string_view of ASCII or a std::u16string_view.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    if (wide_) return visitor(std::u16string_view(unitsAs<char16_t>(), length()));
    return visitor(std::string_view(unitsAs<char>(), length()));
  }
  /// Whether the string is stored as ASCII; a mutable one is, until the first code unit that is not ASCII.
  bool isASCII() const noexcept { return !wide_; }

  /// Whether the memory of the string is cleansed when it is released. Copies, parts and strings that it is
  /// appended to inherit this. To be set before other threads use the object.
  ///@{
  bool holdsSecret() const noexcept { return storage_.holdsSecret(); }
  void setHoldsSecret(bool secret) noexcept { storage_.setHoldsSecret(secret); }
  ///@}

 protected:
  /// What immutable and mutable strings share: creation, copying and access.
  ///@{
  NSString(NSTail tail, bool wide) : storage_(tail), wide_(wide) {}

  static NSRef<NSString> ofASCIILength(std::size_t length) { return ofBytes(length, false); }
  static NSRef<NSString> ofUTF16Length(std::size_t length);
  template <class Unit>
  Unit* unitsAs() const noexcept {
    return reinterpret_cast<Unit*>(storage_.units().data());
  }
  virtual NSRef<NSString> fixedCopy() const { return const_cast<NSString&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;

  NSStorage<std::byte> storage_;
  bool wide_;
  ///@}

 private:
  static NSRef<NSString> ofBytes(std::size_t size, bool wide);
  static NSRefPtr<NSString> fromUTF8(std::string_view bytes, bool secret);
};

/// Returns a handle to a new string that is never released, for a constant: the exit handlers and threads of
/// a host may use constants until the process has ended.
NS_EXPORT const NSRef<NSString>& NSConstantString(NSStringArg text);

/// Writes a string for people in UTF-8; one with an unpaired surrogate as escapes of all its code units, nil
/// as "(null)".
///@{
NS_EXPORT std::ostream& operator<<(std::ostream& stream, const NSString& text);
NS_EXPORT std::ostream& operator<<(std::ostream& stream, const NSRefPtr<NSString>& text);
///@}

/// Orders strings by their code units. Takes linear time.
NS_EXPORT std::strong_ordering operator<=>(const NSString& a, const NSString& b) noexcept;

/// For ordered containers whose keys are handles to strings, none of them nil, as in
/// std::map<NSRef<NSString>, int, NSStringLess>.
struct NSStringLess {
  /// Returns whether the first string comes before the second.
  template <class Handle, class Other>
  bool operator()(const Handle& a, const Other& b) const {
    return *a < *b;
  }
};

/// The hash of a string, by value.
template <>
struct std::hash<NSString> {
  /// Returns the string's hash.
  std::size_t operator()(const NSString& string) const { return string.hash(); }
};
