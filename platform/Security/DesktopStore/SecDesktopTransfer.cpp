#include <Security/DesktopStore/SecDesktopTransfer.h>

#include <Security/DesktopStore/SecDesktopCrypto.h>
#include <Security/DesktopStore/SecDesktopError.h>
#include <Security/DesktopStore/SecDesktopText.h>

namespace {

using View = std::span<const std::byte>;

constexpr char algorithm[] = "dh-ietf1024-sha256-aes128-cbc-pkcs7";

void appendBytes(sd_bus_message* message, View bytes) {
  secCheckWritten(sd_bus_message_append_array(message, 'y', bytes.data(), bytes.size()));
}

View readBytes(sd_bus_message* message) {
  const void* bytes = nullptr;
  std::size_t size = 0;
  secCheckRead(sd_bus_message_read_array(message, 'y', &bytes, &size));
  return {static_cast<const std::byte*>(bytes), size};
}

SecDesktopMessage openSession(SecDesktopService& service, View publicValue) {
  const auto request = service.makeCall("OpenSession");
  secCheckWritten(sd_bus_message_append(request.get(), "s", algorithm));
  secCheckWritten(sd_bus_message_open_container(request.get(), 'v', "ay"));
  appendBytes(request.get(), publicValue);
  secCheckWritten(sd_bus_message_close_container(request.get()));
  SecDesktopReply reply = service.bus().ask(request);
  secRequire(!secIsNoReply(reply.error), secDesktopStatus(reply.error));
  secRequire(reply.message != nullptr, errSecNoAlgorithm);
  return std::move(reply.message);
}

/// Some services keep text and other bytes in different places, and only text where people see it.
const char* contentType(View secret) {
  const std::string_view bytes(reinterpret_cast<const char*>(secret.data()), secret.size());
  return secIsDesktopText(bytes) ? "text/plain" : "application/octet-stream";
}

}  // namespace

SecDesktopTransfer::SecDesktopTransfer(SecDesktopService& service) {
  constexpr int attempts = 8;
  for (int i = 0; i < attempts && !agree(service); ++i) continue;
  secRequire(!path_.empty(), errSecDecode);
}

/// Opens a session. Returns whether both sides are sure to have the same key.
bool SecDesktopTransfer::agree(SecDesktopService& service) {
  const SecDesktopExchange exchange;
  const auto reply = openSession(service, exchange.publicValue());
  secCheckRead(sd_bus_message_enter_container(reply.get(), 'v', "ay"));
  auto key = exchange.sharedKey(readBytes(reply.get()));
  if (!key) return false;
  key_ = std::move(*key);
  secCheckRead(sd_bus_message_exit_container(reply.get()));
  const char* path = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "o", &path));
  path_ = path;
  return true;
}

void SecDesktopTransfer::write(sd_bus_message* message, const SecSecret& secret) const {
  const SecDesktopBox box = secDesktopEncrypt(key_.bytes(), secret.bytes());
  secCheckWritten(sd_bus_message_open_container(message, 'r', "oayays"));
  secCheckWritten(sd_bus_message_append(message, "o", path()));
  appendBytes(message, box.vector);
  appendBytes(message, box.ciphertext);
  secCheckWritten(sd_bus_message_append(message, "s", contentType(secret.bytes())));
  secCheckWritten(sd_bus_message_close_container(message));
}

SecSecret SecDesktopTransfer::read(sd_bus_message* reply) const {
  const char* session = nullptr;
  secCheckRead(sd_bus_message_enter_container(reply, 'r', "oayays"));
  secCheckRead(sd_bus_message_read(reply, "o", &session));
  secRequire(path_ == session, errSecDecode);
  const View vector = readBytes(reply);
  return secDesktopDecrypt(key_.bytes(), vector, readBytes(reply));
}
