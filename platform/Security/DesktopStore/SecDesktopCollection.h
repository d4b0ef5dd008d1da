#pragma once

#include <string>
#include <vector>

#include <Security/DesktopStore/SecDesktopPrompt.h>

/// The service's default collection, which new items go to. Fails by throwing SecFailure.
class SecDesktopCollection {
 public:
  /// Looks up which one it is. Fails with errSecNoSuchKeychain if there is none.
  explicit SecDesktopCollection(SecDesktopService& service);

  const std::string& path() const { return path_; }
  /// Returns the name that people know it by.
  std::string label();
  bool isLocked();
  /// Unlocks it if it is locked. Fails with errSecInteractionNotAllowed if it stays locked.
  void unlock(SecDesktopPrompt& prompt);

 private:
  SecDesktopMessage property(const char* name, const char* type);

  SecDesktopService& service_;
  std::string path_;
};

/// Unlocks collections or items. Fails as the prompt does; what the service leaves locked is not noticed
/// here.
void secUnlockObjects(SecDesktopService& service, const std::vector<std::string>& paths,
                      SecDesktopPrompt& prompt);

/// Reads an array of paths from a reply.
std::vector<std::string> secReadPaths(sd_bus_message* reply);
