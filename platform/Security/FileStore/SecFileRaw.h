#pragma once

#include <Security/FileStore/SecFileFolder.h>

/// Reads a store file without SQLite's tables, however damaged it is. The read is locked against writers;
/// fails with errSecBusy if one is at work, and with errSecNoSuchKeychain if there is no file.
SecBytes secReadRaw(const SecFileFolder& folder, const std::string& name);
