#pragma once

#include <optional>
#include <string>

#include <Foundation/Foundation.h>

/// Data and the bytes in it; no bytes is another thing than none.
using Bytes = std::optional<std::string>;

inline NSRef<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes.data(), bytes.size());
}

inline Bytes bytesOf(const NSRefPtr<NSData>& data) {
  if (!data) return {};
  return std::string(reinterpret_cast<const char*>(data->bytes().data()), data->length());
}
inline Bytes bytesOf(const NSRefPtr<NSString>& text) { return text ? text->UTF8String() : Bytes(); }
