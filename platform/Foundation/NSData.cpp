#include <Foundation/NSData.h>

#include <string_view>

#include <Foundation/NSString.h>

namespace {

std::string_view asText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const std::byte> asBytes(const void* bytes, std::size_t length) {
  return {static_cast<const std::byte*>(bytes), length};
}

}  // namespace

Ref<NSData> NSData::data() { return dataWithBytes({}); }

Ref<NSData> NSData::dataWithBytes(const void* bytes, std::size_t length) {
  return dataWithBytes(asBytes(bytes, length));
}

Ref<NSData> NSData::dataWithBytes(std::span<const std::byte> bytes, bool secret) {
  const Ref<NSData> data = allocWithTail(bytes.size());
  data->storage_.append(bytes);
  data->setHoldsSecret(secret);
  return data;
}

bool NSData::isEqual(const RefPtr<NSObject>& other) const {
  const auto* data = dynamicCast<NSData>(other.get());
  return data && asText(bytes()) == asText(data->bytes());
}

std::size_t NSData::hash() const { return std::hash<std::string_view>{}(asText(bytes())); }

Ref<NSString> NSData::description() const { return NSString::stringWithFormat("<%lu bytes>", length()); }

Ref<NSMutableData> NSData::mutableCopy() const {
  return NSMutableData::dataWithBytes(bytes(), holdsSecret());
}

Ref<NSObject> NSData::mutableCopyObject() const { return mutableCopy(); }

Ref<NSMutableData> NSMutableData::dataWithLength(std::size_t length) {
  const Ref<NSMutableData> data = dataWithCapacity(length);
  data->setLength(length);
  return data;
}

Ref<NSMutableData> NSMutableData::dataWithBytes(const void* bytes, std::size_t length) {
  return dataWithBytes(asBytes(bytes, length));
}

Ref<NSMutableData> NSMutableData::dataWithBytes(std::span<const std::byte> bytes, bool secret) {
  const Ref<NSMutableData> data = dataWithCapacity(bytes.size());
  data->storage_.append(bytes);
  data->setHoldsSecret(secret);
  return data;
}

void NSMutableData::appendBytes(const void* bytes, std::size_t length) {
  storage_.append(asBytes(bytes, length));
}

void NSMutableData::appendData(const Ref<NSData>& data) {
  if (data->holdsSecret()) setHoldsSecret(true);
  storage_.append(data->bytes());
}

void NSMutableData::setLength(std::size_t length) {
  const std::size_t before = storage_.count();
  storage_.setCount(length);
  for (std::size_t i = before; i < length; ++i) storage_.units()[i] = std::byte{0};
}
