#pragma once

#include <optional>
#include <string>

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// The bytes of an object; no value for nil, which is different from no bytes.
using Bytes = std::optional<std::string>;

inline NSRef<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes.data(), bytes.size());
}

inline Bytes bytesOf(const NSRefPtr<NSData>& data) {
  if (!data) return {};
  return std::string(reinterpret_cast<const char*>(data->bytes().data()), data->length());
}
inline Bytes bytesOf(const NSRefPtr<NSString>& text) { return text ? text->UTF8String() : Bytes(); }
