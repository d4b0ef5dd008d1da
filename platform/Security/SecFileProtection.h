#pragma once

#include <cstdint>

/// What opens a store file.
enum class SecFileProtection : std::uint8_t { keyFile = 1, passphrase = 2 };
