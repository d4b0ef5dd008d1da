#pragma once

#include <sys/types.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>
#include <string>

#include <Security/SecFailure.h>

/// Releases what sd-bus hands out.
struct SecDesktopRelease {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
  void operator()(sd_bus_creds* creds) const { sd_bus_creds_unref(creds); }
};

/// A message: a call, a reply or a signal. Its memory is overwritten when it is freed.
using SecDesktopMessage = std::unique_ptr<sd_bus_message, SecDesktopRelease>;

/// What came back from a call: a reply or, if there is none, the name of the error.
struct SecDesktopReply {
  SecDesktopMessage message;
  std::string error;
};

/// A private connection to the session bus, on which no call takes longer than its limit. It starts no
/// thread and needs no main loop: signals are read where they are waited for. Used by one thread at a time.
/// Fails by throwing SecFailure.
class SecDesktopBus {
 public:
  using Clock = std::chrono::steady_clock;
  using Limit = std::chrono::microseconds;

  /// Connects. Fails with errSecNoSessionBus, and with errSecTimedOut if the bus does not respond.
  explicit SecDesktopBus(Limit callLimit);

  /// Whether this process opened it, and not one that this process was forked from.
  bool isOurs() const;

  SecDesktopMessage makeCall(const char* destination, const char* path, const char* interface,
                             const char* member) const;
  /// The same for a call of the bus itself.
  SecDesktopMessage makeBusCall(const char* member) const;

  /// Sends a call and waits for what comes back.
  SecDesktopReply ask(const SecDesktopMessage& message);
  /// The same; an error fails with its status (secDesktopStatus).
  SecDesktopMessage call(const SecDesktopMessage& message);
  /// Sends a call without asking for a reply, and ignores failures.
  void send(const SecDesktopMessage& message) noexcept;
  /// Returns the name of the program behind a unique name; empty if it cannot be found out.
  std::string programOf(const std::string& uniqueName) const;
  /// From now on calls are sent, but their replies are not waited for: they fail with errSecTimedOut.
  void stopWaiting() { callLimit_ = Limit(1); }

  /// Returns the next message that is not a reply; null if there is none until `end`.
  SecDesktopMessage next(Clock::time_point end);
  /// Drops the messages that have come so far.
  void drain();

 private:
  bool process(SecDesktopMessage& message);
  void wait(Clock::time_point end);

  Limit callLimit_;
  pid_t process_;
  std::unique_ptr<sd_bus, SecDesktopRelease> bus_;
};
