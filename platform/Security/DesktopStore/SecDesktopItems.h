#pragma once

#include <string>
#include <vector>

#include <Security/DesktopStore/SecDesktopCollection.h>
#include <Security/DesktopStore/SecDesktopText.h>
#include <Security/DesktopStore/SecDesktopTransfer.h>

/// An item in the service.
struct SecDesktopItem {
  std::string path;
  SecDesktopProperties properties;
};

/// What a search has found.
struct SecDesktopFound {
  std::vector<SecDesktopItem> items;
  bool complete = true;  ///< whether no item disappeared while it was read
};

/// The items in the service, each operation one or a few calls. Fails by throwing SecFailure.
class SecDesktopItems {
 public:
  SecDesktopItems(SecDesktopService& service, SecDesktopTransfer& transfer, SecDesktopPrompt& prompt)
      : service_(service), transfer_(transfer), prompt_(prompt) {}

  /// Returns the items that have the attributes, in all collections, after unlocking those that are locked.
  SecDesktopFound search(const SecDesktopAttributes& attributes);
  /// Returns how many items have the attributes; unlocks nothing.
  std::size_t count(const SecDesktopAttributes& attributes);

  /// Returns the path of the new item.
  std::string create(const std::string& collection, const SecDesktopProperties& properties,
                     const SecSecret& secret);
  void setAttributes(const std::string& path, const SecDesktopAttributes& attributes);
  void setLabel(const std::string& path, const SecDesktopText& label);
  void setSecret(const std::string& path, const SecSecret& secret);
  SecSecret secret(const std::string& path);
  void remove(const std::string& path);

 private:
  SecDesktopMessage searchReply(const SecDesktopAttributes& attributes);
  void read(const std::string& path, SecDesktopFound& found);
  SecDesktopMessage makePropertyCall(const std::string& path, const char* name);

  SecDesktopService& service_;
  SecDesktopTransfer& transfer_;
  SecDesktopPrompt& prompt_;
};
