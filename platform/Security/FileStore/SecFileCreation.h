#pragma once

#include <string>

/// Makes an empty store at `path` under a new key file. When another process has made one meanwhile, that
/// one stands, and nothing of this one remains.
void secMakeStore(const std::string& path, const std::string& keyFolder);
