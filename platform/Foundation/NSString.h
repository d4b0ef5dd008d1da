#pragma once

#include <cstdint>
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

/// How a text is told in bytes, strictly: nothing is replaced or left out.
enum NSStringEncoding : unsigned {
  NSASCIIStringEncoding = 1,  ///< 7 bits
  NSUTF8StringEncoding = 4,   ///< RFC 3629
};

/// A text, counted and indexed in 16-bit code units, which may hold unpaired surrogates, NUL and a leading
/// byte-order mark as content. It is kept as 7-bit ASCII where all of it is, else as UTF-16; that never
/// shows in length, indexes, equality or hash. Fixed, so that any number of threads may use one at once.
class NS_EXPORT NSString : public NSObject::Subclass<NSString> {
 public:
  /// Equal texts have equal hashes.
  using HashAgreesWithEquality = NSString;

  /// The empty text.
  static NSRef<NSString> string();
  /// The same text as a fixed one; nil raises the invalid-argument exception.
  static NSRef<NSString> stringWithString(NSStringArg text);
  /// Absent when the bytes are not UTF-8, or nil.
  ///@{
  static NSRefPtr<NSString> stringWithUTF8String(std::string_view bytes);
  static NSRefPtr<NSString> stringWithUTF8String(const char* bytes);
  ///@}
  /// Any code units, unpaired surrogates included.
  static NSRef<NSString> stringWithCharacters(std::u16string_view units);
  /// initWithData:encoding:. Absent when the bytes are not of the encoding; absent bytes give the empty
  /// text. A text made of secret bytes holds a secret, too.
  static NSRefPtr<NSString> stringWithData(const NSRefPtr<NSData>& data, NSStringEncoding encoding);
  /// A text of `length` ASCII characters that `write(std::span<char>)` fills in, in their final place.
  template <class Write>
  static NSRef<NSString> stringWithASCIILength(std::size_t length, Write&& write) {
    const NSRef<NSString> text = ofASCIILength(length);
    std::forward<Write>(write)(std::span(text->unitsAs<char>(), length));
    return text;
  }
  /// Fills in the directives of NSFormat.h; raises the invalid-argument exception where they do not fit.
  template <class... Arguments>
  static NSRef<NSString> stringWithFormat(NSStringArg format, const Arguments&... arguments) {
    return NSFormat(*format.borrow(), {NSFormatArg(arguments)...});
  }

  /// In 16-bit code units.
  std::size_t length() const noexcept {
    return wide_ ? storage_.count() / sizeof(char16_t) : storage_.count();
  }
  /// Raises the range exception from `length` on.
  char16_t characterAtIndex(std::size_t index) const;
  /// Whether the code units are, or begin with, those of the other text; never those of nil.
  ///@{
  bool isEqualToString(NSStringArg other) const;
  bool hasPrefix(NSStringArg prefix) const;
  ///@}

  /// Absent when a surrogate stands alone.
  std::optional<std::string> UTF8String() const;
  /// As UTF8String; raises the invalid-argument exception where that is absent.
  explicit operator std::string() const;
  /// The code units as they are.
  explicit operator std::u16string() const;
  /// Absent when the text cannot be told in the encoding: nothing is replaced. Bytes of a text that holds
  /// a secret hold one, too.
  NSRefPtr<NSData> dataUsingEncoding(NSStringEncoding encoding) const;

  /// The text from `index` on; raises the range exception beyond `length`.
  NSRef<NSString> substringFromIndex(std::size_t index) const;
  /// A new text with the tail, or the filled-in format, behind this one's content. Nil, and a format that
  /// does not fit, raise the invalid-argument exception.
  ///@{
  NSRef<NSString> stringByAppendingString(NSStringArg tail) const;
  template <class... Arguments>
  NSRef<NSString> stringByAppendingFormat(NSStringArg format, const Arguments&... arguments) const {
    return stringByAppendingString(stringWithFormat(format, arguments...));
  }
  ///@}
  /// The pieces between the separators, in order: one more than there are separators, empty ones
  /// included. An empty separator gives the text itself.
  NSRef<NSArray> componentsSeparatedByString(NSStringArg separator) const;

  /// Equal are texts of the same code units, fixed or growable; nothing is normalised. Both take linear time.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override;
  ///@}
  /// The text itself.
  NSRef<NSString> description() const override { return copy(); }
  /// As NSObject's; a copy of a secret is one, too.
  ///@{
  NSRef<NSString> copy() const { return fixedCopy(); }
  NSRef<NSMutableString> mutableCopy() const;
  ///@}

  /// Calls `visitor` with the units as they are kept, a std::string_view of ASCII or a std::u16string_view.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    if (wide_) return visitor(std::u16string_view(unitsAs<char16_t>(), length()));
    return visitor(std::string_view(unitsAs<char>(), length()));
  }
  /// Whether it is kept as ASCII; of a growable text that is so until the first unit that is not.
  bool isASCII() const noexcept { return !wide_; }

  /// Whether the memory of the text is cleansed when it is let go of. Copies, parts and texts that it is
  /// appended to follow. To be set before other threads use the object.
  ///@{
  bool holdsSecret() const noexcept { return storage_.holdsSecret(); }
  void setHoldsSecret(bool secret) noexcept { storage_.setHoldsSecret(secret); }
  ///@}

 protected:
  /// What both kinds share: how they are made, copied and read.
  ///@{
  NSString(NSTail tail, bool wide) : storage_(tail), wide_(wide) {}

  static NSRef<NSString> ofASCIILength(std::size_t length);
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
};

/// Writes a text for people in UTF-8; one with an unpaired surrogate as escapes of all its code units, nil as
/// "(null)".
///@{
NS_EXPORT std::ostream& operator<<(std::ostream& stream, const NSString& text);
NS_EXPORT std::ostream& operator<<(std::ostream& stream, const NSRefPtr<NSString>& text);
///@}
