#include <VXFoundation/VXURLCoding.h>
#include <curl/curl.h>
#include <glib.h>

#include <QByteArray>
#include <memory>

#include "Contest.h"

namespace {

using namespace Contest;
using Make = Bytes (*)(std::size_t);

/// About `size` bytes of percent-encoded text, cut between escapes.
Bytes encodedText(Make make, std::size_t size) {
  const NSRefPtr<NSData> data = VXURLEncodeData(dataOf(make(size)));
  const std::span<const std::byte> encoded = data->bytes();
  Bytes text;
  for (std::size_t i = 0; text.size() + 3 <= size;) {
    const std::size_t length = encoded[i] == std::byte{'%'} ? 3 : 1;
    text.insert(text.end(), encoded.begin() + static_cast<std::ptrdiff_t>(i),
                encoded.begin() + static_cast<std::ptrdiff_t>(i + length));
    i += length;
  }
  return text;
}

void registerEncoders(const std::string& operation, Make make) {
  ours(operation, [make](std::size_t size) {
    return Trial{size, [data = NSRefPtr<NSData>(dataOf(make(size)))] { return VXURLEncodeData(data); }};
  });
  contestant(operation, "GLib", Checks::all, make, [](const Bytes& bytes) {
    return std::unique_ptr<char, void (*)(void*)>(
        g_uri_escape_bytes(reinterpret_cast<const guint8*>(bytes.data()), bytes.size(), nullptr), g_free);
  });
  contestant(operation, "libcurl", Checks::all, make, [](const Bytes& bytes) {
    return std::unique_ptr<char, void (*)(void*)>(
        curl_easy_escape(nullptr, characters(bytes), static_cast<int>(bytes.size())), curl_free);
  });
  contestant(operation, "Qt 5", Checks::all, make,
             [](const Bytes& bytes) { return viewForQt(bytes).toPercentEncoding(); });
}

void registerDecoders(const std::string& operation, Make make) {
  ours(operation, [make](std::size_t size) {
    const auto text = encodedText(make, size);
    return Trial{text.size(), [data = NSRefPtr<NSData>(dataOf(text))] { return VXURLDecodeData(data); }};
  });
  contestant(operation, "GLib", Checks::all, [make](std::size_t size) {
    const auto text = encodedText(make, size);
    return Trial{
        text.size(), [text] {
          return std::unique_ptr<GBytes, void (*)(GBytes*)>(
              g_uri_unescape_bytes(characters(text), static_cast<gssize>(text.size()), nullptr, nullptr),
              [](GBytes* bytes) {
                if (bytes) g_bytes_unref(bytes);
              });
        }};
  });
  contestant(operation, "libcurl", Checks::fewer, [make](std::size_t size) {
    const auto text = encodedText(make, size);
    return Trial{text.size(), [text] {
                   int count = 0;
                   return std::unique_ptr<char, void (*)(void*)>(
                       curl_easy_unescape(nullptr, characters(text), static_cast<int>(text.size()), &count),
                       curl_free);
                 }};
  });
  contestant(operation, "Qt 5", Checks::fewer, [make](std::size_t size) {
    const auto text = encodedText(make, size);
    return Trial{text.size(), [encoded = QByteArray(characters(text), static_cast<int>(text.size()))] {
                   return QByteArray::fromPercentEncoding(encoded);
                 }};
  });
}

}  // namespace

void registerURLCoding() {
  registerEncoders("percent encode, random", randomBytes);
  registerEncoders("percent encode, text", prose);
  registerDecoders("percent decode, random", randomBytes);
  registerDecoders("percent decode, text", prose);
}
