#include <Security/DesktopStore/SecDesktopLock.h>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

constexpr char lockName[] = "org.vxfoundation.Keychain.Lock";

/// The bus's flags and replies, as D-Bus numbers them.
enum Flags : std::uint32_t { waitInQueue = 0, doNotQueue = 4 };
enum Result : std::uint32_t { refused = 0, isOwner = 1, isInQueue = 2 };

std::uint32_t request(SecDesktopBus& bus, Flags flags) {
  const auto message = bus.makeBusCall("RequestName");
  secCheckWritten(sd_bus_message_append(message.get(), "su", lockName, static_cast<std::uint32_t>(flags)));
  const SecDesktopReply reply = bus.ask(message);
  if (reply.error == "org.freedesktop.DBus.Error.AccessDenied") return refused;
  secRequire(reply.message != nullptr, secDesktopStatus(reply.error));
  std::uint32_t result = 0;
  secCheckRead(sd_bus_message_read(reply.message.get(), "u", &result));
  return result;
}

/// The reply is not waited for: the bus handles messages in their order.
void release(SecDesktopBus& bus) noexcept {
  secStatusOf([&] {
    const auto message = bus.makeBusCall("ReleaseName");
    secCheckWritten(sd_bus_message_append(message.get(), "s", lockName));
    bus.send(message);
  });
}

bool isAcquisition(sd_bus_message* signal) {
  const char* name = nullptr;
  return sd_bus_message_is_signal(signal, "org.freedesktop.DBus", "NameAcquired") > 0 &&
         sd_bus_message_read(signal, "s", &name) > 0 && std::string_view(name) == lockName;
}

bool waitForAcquisition(SecDesktopBus& bus, SecDesktopBus::Clock::time_point end) {
  while (const auto message = bus.next(end))
    if (isAcquisition(message.get())) return true;
  return false;
}

}  // namespace

SecDesktopLock::SecDesktopLock(SecDesktopBus& bus, std::chrono::milliseconds limit) : bus_(bus) {
  const auto end = SecDesktopBus::Clock::now() + limit;
  bus.drain();  // the signal of an earlier lock must not be taken for this one's
  if (request(bus, waitInQueue) != isInQueue || waitForAcquisition(bus, end)) return;
  release(bus);
  throw SecFailure{errSecBusy};
}

SecDesktopLock::~SecDesktopLock() { release(bus_); }

bool SecDesktopLock::isAllowed(SecDesktopBus& bus) {
  const std::uint32_t result = request(bus, doNotQueue);
  if (result == isOwner) release(bus);
  return result != refused;
}
