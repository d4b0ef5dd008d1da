#include <Foundation/NSData.h>

#include <cstring>
#include <string_view>

#include <Foundation/Internal/NSKeyedHash.h>
#include <Foundation/NSString.h>

namespace {

std::string_view asText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const std::byte> asBytes(const void* bytes, std::size_t length) {
  return {static_cast<const std::byte*>(bytes), length};
}

}  // namespace

NSRef<NSData> NSData::data() { return dataWithBytes({}); }

NSRef<NSData> NSData::dataWithBytes(const void* bytes, std::size_t length) {
  return dataWithBytes(asBytes(bytes, length));
}

NSRef<NSData> NSData::dataWithBytes(std::span<const std::byte> bytes, bool secret) {
  const NSRef<NSData> data = allocWithTail(bytes.size());
  data->storage_.append(bytes);
  data->setHoldsSecret(secret);
  return data;
}

bool NSData::isEqual(const NSRefPtr<NSObject>& other) const {
  const auto* data = NSDynamicCast<NSData>(other.get());
  return data && asText(bytes()) == asText(data->bytes());
}

std::size_t NSData::hash() const { return NSKeyedHashOf(bytes()); }

NSRef<NSString> NSData::description() const { return NSString::stringWithFormat("<%lu bytes>", length()); }

NSRef<NSMutableData> NSData::mutableCopy() const {
  return NSMutableData::dataWithBytes(bytes(), holdsSecret());
}

NSRef<NSObject> NSData::mutableCopyObject() const { return mutableCopy(); }

NSRef<NSMutableData> NSMutableData::dataWithLength(std::size_t length) {
  const NSRef<NSMutableData> data = dataWithCapacity(length);
  data->setLength(length);
  return data;
}

NSRef<NSMutableData> NSMutableData::dataWithBytes(const void* bytes, std::size_t length) {
  return dataWithBytes(asBytes(bytes, length));
}

NSRef<NSMutableData> NSMutableData::dataWithBytes(std::span<const std::byte> bytes, bool secret) {
  const NSRef<NSMutableData> data = dataWithCapacity(bytes.size());
  data->storage_.append(bytes);
  data->setHoldsSecret(secret);
  return data;
}

void NSMutableData::appendBytes(const void* bytes, std::size_t length) {
  storage_.append(asBytes(bytes, length));
}

void NSMutableData::appendData(const NSRef<NSData>& data) {
  if (data->holdsSecret()) setHoldsSecret(true);
  storage_.append(data->bytes());
}

void NSMutableData::setLength(std::size_t length) {
  const std::size_t before = storage_.count();
  storage_.setCount(length);
  if (length > before) std::memset(storage_.units().data() + before, 0, length - before);
}
