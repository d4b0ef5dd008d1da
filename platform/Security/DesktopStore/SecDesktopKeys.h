#pragma once

#include <string>
#include <vector>

#include <Security/SecDesktopStorage.h>
#include <Security/SecSecret.h>

// Items that each hold the key of one slot of a store in a file. They are named by the number of the slot,
// and say which store they were made for. Each function connects anew. Fail by throwing SecFailure, as
// SecDesktopSession does.

/// The store that an item was made for; its path is readable to every program on the bus.
struct SecDesktopKeyOwner {
  std::string path;
  std::string device;
  std::string inode;
};

/// Returns the secrets of all items of this name; shows no prompt. Fails with errSecInteractionNotAllowed if
/// the collection is locked, and with errSecDataNotAvailable if it has no such item.
std::vector<SecSecret> secReadDesktopKeys(const std::string& name);

/// Stores a secret and reads it back over another connection; fails with errSecIO if it is not there, or not
/// alone, and with errSecParam if the path cannot be an attribute.
void secWriteDesktopKey(const std::string& name, const SecDesktopKeyOwner& owner, const SecSecret& secret,
                        const SecDesktopOptions& options);

/// A key that is stored, and the store that it was made for.
struct SecDesktopKey {
  std::string name;
  SecDesktopKeyOwner owner;
};
/// Returns all that there are; shows no prompt, and fails as secReadDesktopKeys does for a locked collection.
std::vector<SecDesktopKey> secListDesktopKeys();

/// Deletes the items of this name that were made for this owner; shows no prompt.
void secEraseDesktopKey(const std::string& name, const SecDesktopKeyOwner& owner);
