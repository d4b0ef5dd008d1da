#pragma once

#include <optional>
#include <string>

#include <Security/SecSecret.h>

/// Reads the passphrase that a service manager has put into the file vxfoundation.passphrase of a folder,
/// without one final newline. No value if there is none, or if it cannot be read.
std::optional<SecSecret> secReadCredential(const std::string& folder);
