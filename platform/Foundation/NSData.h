#pragma once

#include <optional>
#include <span>

#include <Foundation/NSStorage.h>

class NSMutableData;

/// A sequence of bytes. Immutable, so that any number of threads may use one at once.
class NS_EXPORT NSData : public NSObject::Subclass<NSData> {
 public:
  /// Equal bytes have equal hashes.
  using HashAgreesWithEquality = NSData;

  /// Returns data with no bytes, or with a copy of those given; the pointer may be null if `length` is 0. A
  /// secret is cleansed: see holdsSecret.
  ///@{
  static NSRef<NSData> data();
  static NSRef<NSData> dataWithBytes(const void* bytes, std::size_t length);
  static NSRef<NSData> dataWithBytes(std::span<const std::byte> bytes, bool secret = false);
  ///@}
  /// Returns `length` bytes that `write(std::span<std::byte>)` writes in their final place, uninitialised
  /// until then.
  template <class Write>
  static NSRef<NSData> dataWithLength(std::size_t length, Write&& write) {
    NSRef<NSData> data = allocWithTail(length);
    data->storage_.setCount(length);
    std::forward<Write>(write)(data->storage_.units());
    return data;
  }

  /// Returns the bytes in place, not a copy: valid for as long as the object lives and, if it is mutable,
  /// until its length changes.
  std::span<const std::byte> bytes() const noexcept { return storage_.units(); }
  /// Returns the length in bytes.
  std::size_t length() const noexcept { return storage_.count(); }

  /// Objects with the same bytes are equal, whether immutable or mutable. Both functions take linear time.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override;
  ///@}
  /// Returns the length alone: the bytes are as likely a secret as not.
  NSRef<NSString> description() const override;
  /// As in NSObject; a copy of a secret is a secret, too.
  ///@{
  NSRef<NSData> copy() const { return fixedCopy(); }
  NSRef<NSMutableData> mutableCopy() const;
  ///@}

  /// Whether the memory of the bytes is cleansed when it is released. Copies inherit this. To be set before
  /// other threads use the object.
  ///@{
  bool holdsSecret() const noexcept { return storage_.holdsSecret(); }
  void setHoldsSecret(bool secret) noexcept { storage_.setHoldsSecret(secret); }
  ///@}

 protected:
  /// What immutable and mutable data share: creation and copying.
  ///@{
  explicit NSData(NSTail tail) : storage_(tail) {}
  virtual NSRef<NSData> fixedCopy() const { return const_cast<NSData&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;

  NSStorage<std::byte> storage_;
  ///@}
};

/// A mutable sequence of bytes, which start in the object's own block and move out when they outgrow it. For
/// one thread at a time.
class NS_EXPORT NSMutableData : public NSData::Subclass<NSMutableData> {
 public:
  /// Returns empty data with room for `capacity` bytes in its own block.
  ///@{
  static NSRef<NSMutableData> data() { return dataWithCapacity(0); }
  static NSRef<NSMutableData> dataWithCapacity(std::size_t capacity) { return allocWithTail(capacity); }
  ///@}
  /// Returns `length` zero bytes.
  static NSRef<NSMutableData> dataWithLength(std::size_t length);
  /// Returns a copy of the bytes, as in NSData.
  ///@{
  static NSRef<NSMutableData> dataWithBytes(const void* bytes, std::size_t length);
  static NSRef<NSMutableData> dataWithBytes(std::span<const std::byte> bytes, bool secret = false);
  ///@}
  /// Returns the bytes that `write(std::span<std::byte>)` writes in their final place, at most `maximum` of
  /// them; the span is uninitialised. `write` returns the number of bytes or, to make the result nil,
  /// std::nullopt.
  template <class Write>
  static NSRefPtr<NSData> dataWithMaximumLength(std::size_t maximum, Write&& write) {
    NSRef<NSMutableData> data = dataWithCapacity(maximum);
    data->storage_.setCount(maximum);
    const std::optional<std::size_t> length = std::forward<Write>(write)(data->mutableBytes());
    if (!length) return nullptr;
    data->storage_.setCount(*length);
    return data;
  }

  /// Returns the bytes in place, which may be written to until the length changes.
  std::span<std::byte> mutableBytes() noexcept { return storage_.units(); }
  /// Appends a copy of the bytes, which may be this object's own; a secret makes this object a secret, too.
  ///@{
  void appendBytes(const void* bytes, std::size_t length);
  void appendData(const NSRef<NSData>& data);
  ///@}
  /// Appends bytes that `write(std::span<std::byte>)` writes to their final place, at most `maximum`; it
  /// returns their number.
  template <class Write>
  void appendMaximumLength(std::size_t maximum, Write&& write) {
    const std::size_t before = length();
    std::byte* const place = storage_.grow(maximum);
    storage_.setCount(before);
    storage_.setCount(before + std::forward<Write>(write)(std::span(place, maximum)));
  }
  /// Truncates the bytes, or extends them with zeros.
  void setLength(std::size_t length);

  /// Returns an immutable copy of the current bytes.
  NSRef<NSData> copy() const { return fixedCopy(); }

 protected:
  /// How mutable data is created and copied.
  ///@{
  explicit NSMutableData(NSTail tail) : NSData::Subclass<NSMutableData>(tail) {}
  NSRef<NSData> fixedCopy() const override { return NSData::dataWithBytes(bytes(), holdsSecret()); }
  ///@}
};
