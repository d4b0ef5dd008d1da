#pragma once

#include <string>
#include <utility>
#include <vector>

#include <Security/FileStore/SecFileOwner.h>
#include <Security/SecDesktopStorage.h>
#include <Security/SecSecret.h>

/// Keeps the secrets of slots outside of files: in the desktop's credential service, each in an item that is
/// named by the number of its slot. Fails with SecFailure, as SecDesktopStorage does. Every call makes a
/// connection of its own.
class SecFileKeeper {
 public:
  virtual ~SecFileKeeper() = default;

  /// Returns every secret of this name, without asking anybody. Fails with errSecInteractionNotAllowed if the
  /// collection is locked, and with errSecDataNotAvailable if there is none.
  virtual std::vector<SecSecret> read(const std::string& name) = 0;
  /// Stores a secret for a store, and reads it back over another connection.
  virtual void write(const std::string& name, const SecFileOwner& owner, const SecSecret& secret,
                     const SecDesktopOptions& options) = 0;
  /// Returns the names of all secrets, and the store that each was made for.
  virtual std::vector<std::pair<std::string, SecFileOwner>> list() = 0;
  /// Removes what was stored for this very store, without asking anybody.
  virtual void erase(const std::string& name, const SecFileOwner& owner) = 0;
};
