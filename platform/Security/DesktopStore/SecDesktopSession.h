#pragma once

#include <string>

#include <Security/DesktopStore/SecDesktopItems.h>

/// The store as people know it: which program keeps it, and in which collection.
struct SecDesktopPlace {
  std::string program;
  std::string collection;

  friend bool operator==(const SecDesktopPlace&, const SecDesktopPlace&) = default;
};

/// A connection to the service, ready for use. Fails by throwing SecFailure.
class SecDesktopSession {
 public:
  explicit SecDesktopSession(const SecDesktopOptions& options);

  /// Whether this process opened it; one that was inherited through a fork must not be used.
  bool isOurs() const { return bus_.isOurs(); }
  /// Fails with errSecServiceReplaced unless the service is still the one that was connected to.
  void requireService();
  /// Fails unless it may be believed that what was not found is not there: the service must still be the same
  /// one, and the collection unlocked.
  void requireBelievable();

  SecDesktopBus& bus() { return bus_; }
  SecDesktopCollection& collection() { return collection_; }
  SecDesktopItems& items() { return items_; }
  SecDesktopPlace place() const { return {service_.program(), collection_.path()}; }
  void unlock() { collection_.unlock(prompt_); }

 private:
  SecDesktopBus bus_;
  SecDesktopService service_;
  SecDesktopTransfer transfer_;
  SecDesktopCollection collection_;
  SecDesktopPrompt prompt_;
  SecDesktopItems items_;
};
