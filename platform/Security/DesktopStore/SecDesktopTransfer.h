#pragma once

#include <Security/DesktopStore/SecDesktopService.h>
#include <Security/SecSecret.h>

/// An encrypted transfer session with the service, which ends with the connection. Fails by throwing
/// SecFailure.
class SecDesktopTransfer {
 public:
  /// Agrees on a key. Fails with errSecNoAlgorithm if the service does not offer the one exchange that is
  /// encrypted; secrets are never sent in plain.
  explicit SecDesktopTransfer(SecDesktopService& service);

  const char* path() const { return path_.c_str(); }
  /// Appends a secret to a message.
  void write(sd_bus_message* message, const SecSecret& secret) const;
  /// Reads the secret that a reply consists of.
  SecSecret read(sd_bus_message* reply) const;

 private:
  bool agree(SecDesktopService& service);

  std::string path_;
  SecSecret key_;
};
