#include <Security/DesktopStore/SecDesktopService.h>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

constexpr char serviceName[] = "org.freedesktop.secrets";
constexpr char servicePath[] = "/org/freedesktop/secrets";

std::string interfaceOf(const std::string& kind) { return "org.freedesktop.Secret." + kind; }

/// Returns the unique name of the owner; empty if there is none.
std::string currentOwner(SecDesktopBus& bus) {
  const auto question = bus.makeBusCall("GetNameOwner");
  secCheckWritten(sd_bus_message_append(question.get(), "s", serviceName));
  const SecDesktopReply reply = bus.ask(question);
  if (reply.error == "org.freedesktop.DBus.Error.NameHasNoOwner") return {};
  secRequire(reply.message != nullptr, secDesktopStatus(reply.error));
  const char* owner = nullptr;
  secCheckRead(sd_bus_message_read(reply.message.get(), "s", &owner));
  return owner;
}

void start(SecDesktopBus& bus) {
  const auto request = bus.makeBusCall("StartServiceByName");
  secCheckWritten(sd_bus_message_append(request.get(), "su", serviceName, 0u));
  const SecDesktopReply reply = bus.ask(request);
  if (reply.message) return;
  const OSStatus status = secDesktopStatus(reply.error);
  throw SecFailure{status == errSecTimedOut ? status : errSecNoService};
}

std::string findOwner(SecDesktopBus& bus) {
  std::string owner = currentOwner(bus);
  if (!owner.empty()) return owner;
  start(bus);
  owner = currentOwner(bus);
  secRequire(!owner.empty(), errSecNoService);
  return owner;
}

}  // namespace

SecDesktopService::SecDesktopService(SecDesktopBus& bus)
    : bus_(bus), owner_(findOwner(bus)), program_(bus.programOf(owner_)) {}

bool SecDesktopService::isCurrent() { return currentOwner(bus_) == owner_; }

SecDesktopMessage SecDesktopService::makeCall(const char* member) const {
  return makeCall(servicePath, "Service", member);
}

SecDesktopMessage SecDesktopService::makeCall(const std::string& path, const std::string& kind,
                                              const char* member) const {
  return bus_.makeCall(owner_.c_str(), path.c_str(), interfaceOf(kind).c_str(), member);
}

SecDesktopMessage SecDesktopService::makePropertiesCall(const std::string& path, const std::string& kind,
                                                        const char* member) const {
  auto message = bus_.makeCall(owner_.c_str(), path.c_str(), "org.freedesktop.DBus.Properties", member);
  secCheckWritten(sd_bus_message_append(message.get(), "s", interfaceOf(kind).c_str()));
  return message;
}
