#pragma once

#include <Security/FileStore/SecFileSite.h>
#include <Security/FileStore/SecFileSlot.h>

/// Makes an empty store under a new key file. If another process makes one at the same time, that one stays,
/// and nothing of this one remains; then false is returned.
bool secMakeStore(const SecFileOpenSite& open);
/// Makes one under a passphrase.
bool secMakeStore(const SecFileOpenSite& open, SecView passphrase);
