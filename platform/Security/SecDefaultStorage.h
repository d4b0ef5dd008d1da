#pragma once

#include <Foundation/NSExport.h>

#include <memory>

#include <Security/SecStorage.h>

/// Chooses the storage that SecItemAdd, SecItemCopyMatching, SecItemUpdate and SecItemDelete act on from now
/// on in this process; null stands for the user's embedded file, which is also what is used unless a host
/// chooses. Nothing else ever changes the choice, an error least of all. Safe from any thread; calls that
/// have begun end in the storage that they began with.
NS_EXPORT void secSetDefaultStorage(std::shared_ptr<SecStorage> storage);

/// Gives the storage in use, whose copyInfo tells what it is and how it is protected. Opens the user's
/// embedded file at the first use, and again at the next one when that fails: the status says why, and
/// `storage` is untouched. Safe from any thread.
NS_EXPORT OSStatus secCopyDefaultStorage(std::shared_ptr<SecStorage>& storage);
