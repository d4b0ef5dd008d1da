#include <Security/DesktopStore/SecDesktopBus.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

struct BusError : sd_bus_error {
  BusError() : sd_bus_error{nullptr, nullptr, 0} {}
  BusError(const BusError&) = delete;
  BusError& operator=(const BusError&) = delete;
  ~BusError() { sd_bus_error_free(this); }
};

sd_bus* connect() {
  sd_bus* bus = nullptr;
  const int result = sd_bus_open_user(&bus);
  secRequire(result != -ENOMEM, errSecAllocate);
  secRequire(result >= 0, errSecNoSessionBus);
  return bus;
}

}  // namespace

SecDesktopBus::SecDesktopBus(Limit callLimit) : callLimit_(callLimit), process_(::getpid()), bus_(connect()) {
  const auto end = Clock::now() + callLimit;
  // The first call would wait for this, too, but without a limit.
  while (sd_bus_is_ready(bus_.get()) == 0) {
    const int result = sd_bus_process(bus_.get(), nullptr);
    secRequire(result >= 0, errSecNoSessionBus);
    secRequire(Clock::now() < end, errSecTimedOut);
    if (result == 0) wait(end);
  }
  secRequire(sd_bus_is_ready(bus_.get()) > 0, errSecNoSessionBus);
  sd_bus_set_method_call_timeout(bus_.get(), static_cast<std::uint64_t>(callLimit.count()));
}

bool SecDesktopBus::isOurs() const { return process_ == ::getpid(); }

SecDesktopMessage SecDesktopBus::makeCall(const char* destination, const char* path, const char* interface,
                                          const char* member) const {
  sd_bus_message* made = nullptr;
  secCheckWritten(sd_bus_message_new_method_call(bus_.get(), &made, destination, path, interface, member));
  SecDesktopMessage message(made);
  secCheckWritten(sd_bus_message_sensitive(made));
  secCheckWritten(sd_bus_message_set_auto_start(made, 0));
  return message;
}

SecDesktopMessage SecDesktopBus::makeBusCall(const char* member) const {
  return makeCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member);
}

SecDesktopReply SecDesktopBus::ask(const SecDesktopMessage& message) {
  BusError error;
  sd_bus_message* reply = nullptr;
  const auto limit = static_cast<std::uint64_t>(callLimit_.count());
  const int result = sd_bus_call(bus_.get(), message.get(), limit, &error, &reply);
  SecDesktopReply received{SecDesktopMessage(reply), {}};
  if (result < 0)
    received.error = error.name ? error.name : "";
  else
    secCheckRead(sd_bus_message_sensitive(reply));
  return received;
}

SecDesktopMessage SecDesktopBus::call(const SecDesktopMessage& message) {
  SecDesktopReply reply = ask(message);
  secRequire(reply.message != nullptr, secDesktopStatus(reply.error));
  return std::move(reply.message);
}

void SecDesktopBus::send(const SecDesktopMessage& message) noexcept {
  sd_bus_message_set_expect_reply(message.get(), 0);
  sd_bus_send(bus_.get(), message.get(), nullptr);
}

std::string SecDesktopBus::programOf(const std::string& uniqueName) const {
  sd_bus_creds* creds = nullptr;
  constexpr std::uint64_t wanted = SD_BUS_CREDS_PID | SD_BUS_CREDS_CMDLINE | SD_BUS_CREDS_AUGMENT;
  if (sd_bus_get_name_creds(bus_.get(), uniqueName.c_str(), wanted, &creds) < 0) return {};
  const std::unique_ptr<sd_bus_creds, SecDesktopRelease> owned(creds);
  char** commandLine = nullptr;
  if (sd_bus_creds_get_cmdline(creds, &commandLine) < 0 || !commandLine[0]) return {};
  const std::string program = commandLine[0];
  return program.substr(program.rfind('/') + 1);
}

SecDesktopMessage SecDesktopBus::next(Clock::time_point end) {
  do {
    SecDesktopMessage message;
    if (!process(message)) wait(end);
    if (message) return message;
  } while (Clock::now() < end);
  return nullptr;
}

void SecDesktopBus::drain() {
  SecDesktopMessage message;
  while (process(message)) continue;
}

/// Does one step of what there is to do, and returns whether there was anything.
bool SecDesktopBus::process(SecDesktopMessage& message) {
  sd_bus_message* received = nullptr;
  const int result = sd_bus_process(bus_.get(), &received);
  message.reset(received);
  secRequire(result >= 0, errSecIO);
  return result > 0;
}

void SecDesktopBus::wait(Clock::time_point end) {
  const auto left = std::chrono::ceil<Limit>(end - Clock::now());
  const int result = sd_bus_wait(bus_.get(), static_cast<std::uint64_t>(std::max(left, Limit(0)).count()));
  secRequire(result >= 0 || result == -EINTR, errSecIO);
}
