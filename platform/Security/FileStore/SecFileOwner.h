#pragma once

#include <string>

#include <Security/FileStore/SecFileFolder.h>

/// Which store the secret of a slot was made for. Copying or moving a store changes one of the three.
struct SecFileOwner {
  std::string path;
  SecFileNumber file;
  friend bool operator==(const SecFileOwner&, const SecFileOwner&) = default;
};
