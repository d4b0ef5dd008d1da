#pragma once

#include <memory>

#include <Security/FileStore/SecFileKeeper.h>

/// Returns the keeper of this build: without libsystemd, one that fails with errSecNotBuiltIn.
std::unique_ptr<SecFileKeeper> secMakeDesktopKeeper();
