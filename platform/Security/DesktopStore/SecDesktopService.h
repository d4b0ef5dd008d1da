#pragma once

#include <string>

#include <Security/DesktopStore/SecDesktopBus.h>

/// The program that offers org.freedesktop.secrets, addressed by the unique name of its connection: one that
/// ends or is replaced makes calls fail, instead of sending them to another. Fails by throwing SecFailure.
class SecDesktopService {
 public:
  /// Looks up who owns the name, after having it started if nobody does. Fails with errSecNoService.
  explicit SecDesktopService(SecDesktopBus& bus);

  /// Whether it still owns the name.
  bool isCurrent();
  /// Returns the name of the program, such as "gnome-keyring-daemon"; empty if it cannot be found out.
  const std::string& program() const { return program_; }
  const std::string& uniqueName() const { return owner_; }
  SecDesktopBus& bus() { return bus_; }

  /// A call of the service's own interface.
  SecDesktopMessage makeCall(const char* member) const;
  /// A call of an object, by the last part of its interface's name: "Item", "Collection" or "Prompt".
  SecDesktopMessage makeCall(const std::string& path, const std::string& kind, const char* member) const;

  /// A call that concerns properties, whose first argument, the interface's name, is written already.
  SecDesktopMessage makePropertiesCall(const std::string& path, const std::string& kind,
                                       const char* member) const;

 private:
  SecDesktopBus& bus_;
  std::string owner_;
  std::string program_;
};
