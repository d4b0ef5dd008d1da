#pragma once

#include <Security/FileStore/SecFileSeal.h>

/// Checks every record and every page of a store whose seal was verified; fails with errSecDecode.
void secVerifyStore(const SecFileContext& context, const SecFileSeal& seal);
