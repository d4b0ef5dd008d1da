#pragma once

#include <cstdint>

/// A way to open a store file. The numbers are kept in stores and never change.
enum class SecFileProtection : std::uint8_t {
  keyFile = 1,     ///< a file in the key folder
  passphrase = 2,  ///< a secret that a person knows
  desktop = 3,     ///< an item of the desktop's credential service
};
