#pragma once

#include <string>

#include <Foundation/NSDictionary.h>

/// Returns the dictionary in a property list file; nil if there is none, or if the file is damaged. Each call
/// looks whether the file has changed, and reads it only then. Thread-safe.
NSRefPtr<NSDictionary> NSResourceDictionary(const std::string& path);
