#pragma once

#include <Foundation/NSExport.h>

#include <memory>

#include <Security/SecStorage.h>

/// The kinds of storage that a host can choose without making one.
enum class SecStorageKind {
  file,     ///< the user's embedded file (SecFileStorage), the default
  memory,   ///< a new storage that ends with the process (SecMemoryStorage)
  desktop,  ///< the desktop's credential service (SecDesktopStorage) with the default options
};

/// Chooses the storage that SecItemAdd, SecItemCopyMatching, SecItemUpdate and SecItemDelete act on from now
/// on in this process. Null stands for the user's embedded file, which is also the default. Nothing else ever
/// changes the choice, least of all an error: a storage that cannot be reached, or is not built in, says so
/// in the status of every operation. Safe from any thread; calls that have already begun finish in the
/// storage that they began with.
///@{
NS_EXPORT void secSetDefaultStorage(std::shared_ptr<SecStorage> storage);
NS_EXPORT void secSetDefaultStorage(SecStorageKind kind);
///@}

/// Sets `storage` to the storage in use, whose copyInfo describes what it is and how it is protected. Opens
/// the user's embedded file on first use. If that fails, the status says why, `storage` is untouched, and the
/// next call tries again. Safe from any thread.
[[nodiscard]] NS_EXPORT OSStatus secCopyDefaultStorage(std::shared_ptr<SecStorage>& storage);
