#pragma once

#include <optional>
#include <span>

#include <Foundation/NSStorage.h>

class NSMutableData;

/// A run of bytes. Fixed, so that any number of threads may use one at once.
class NS_EXPORT NSData : public NSObject::Subclass<NSData> {
 public:
  /// Equal bytes have equal hashes.
  using HashAgreesWithEquality = NSData;

  /// No bytes, or a copy of those given; the pointer may be null for a length of 0. A secret is cleansed: see
  /// holdsSecret.
  ///@{
  static NSRef<NSData> data();
  static NSRef<NSData> dataWithBytes(const void* bytes, std::size_t length);
  static NSRef<NSData> dataWithBytes(std::span<const std::byte> bytes, bool secret = false);
  ///@}

  /// The bytes in place, not a copy: for as long as the object lives and, of a growable one, until its length
  /// changes.
  std::span<const std::byte> bytes() const noexcept { return storage_.units(); }
  /// In bytes.
  std::size_t length() const noexcept { return storage_.count(); }

  /// Equal are the same bytes, fixed or growable. Both take linear time.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override;
  ///@}
  /// The length alone: bytes are as likely a secret as not.
  NSRef<NSString> description() const override;
  /// As NSObject's; a copy of a secret is one, too.
  ///@{
  NSRef<NSData> copy() const { return fixedCopy(); }
  NSRef<NSMutableData> mutableCopy() const;
  ///@}

  /// Whether the memory of the bytes is cleansed when it is let go of. Copies follow. To be set before other
  /// threads use the object.
  ///@{
  bool holdsSecret() const noexcept { return storage_.holdsSecret(); }
  void setHoldsSecret(bool secret) noexcept { storage_.setHoldsSecret(secret); }
  ///@}

 protected:
  /// What both kinds share: how they are made and copied.
  ///@{
  explicit NSData(NSTail tail) : storage_(tail) {}
  virtual NSRef<NSData> fixedCopy() const { return const_cast<NSData&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;

  NSStorage<std::byte> storage_;
  ///@}
};

/// A run of bytes that grows. It starts in its own block and moves out when it outgrows that. For one
/// thread at a time.
class NS_EXPORT NSMutableData : public NSData::Subclass<NSMutableData> {
 public:
  /// No bytes yet, with room for `capacity` in its own block.
  ///@{
  static NSRef<NSMutableData> data() { return dataWithCapacity(0); }
  static NSRef<NSMutableData> dataWithCapacity(std::size_t capacity) { return allocWithTail(capacity); }
  ///@}
  /// `length` zeros.
  static NSRef<NSMutableData> dataWithLength(std::size_t length);
  /// A copy of the bytes, as NSData's.
  ///@{
  static NSRef<NSMutableData> dataWithBytes(const void* bytes, std::size_t length);
  static NSRef<NSMutableData> dataWithBytes(std::span<const std::byte> bytes, bool secret = false);
  ///@}
  /// Bytes that `write(std::span<std::byte>)` makes in their final place, at most `maximum` of them, which
  /// hold anything before. It answers how many there are, or std::nullopt, and the result is absent.
  template <class Write>
  static NSRefPtr<NSData> dataWithMaximumLength(std::size_t maximum, Write&& write) {
    NSRef<NSMutableData> data = dataWithCapacity(maximum);
    data->storage_.setCount(maximum);
    const std::optional<std::size_t> length = std::forward<Write>(write)(data->mutableBytes());
    if (!length) return nullptr;
    data->storage_.setCount(*length);
    return data;
  }

  /// The bytes in place, to be written to until the length changes.
  std::span<std::byte> mutableBytes() noexcept { return storage_.units(); }
  /// Append a copy of the bytes, which may be this object's own; a secret makes this one a secret, too.
  ///@{
  void appendBytes(const void* bytes, std::size_t length);
  void appendData(const NSRef<NSData>& data);
  ///@}
  /// Cuts, or fills up with zeros.
  void setLength(std::size_t length);

  /// The bytes at this moment.
  NSRef<NSData> copy() const { return fixedCopy(); }

 protected:
  /// How the growable kind is made and copied.
  ///@{
  explicit NSMutableData(NSTail tail) : NSData::Subclass<NSMutableData>(tail) {}
  NSRef<NSData> fixedCopy() const override { return NSData::dataWithBytes(bytes(), holdsSecret()); }
  ///@}
};
