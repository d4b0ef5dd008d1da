#pragma once

#include <Security/FileStore/SecFileSession.h>

// Changes of who can open a store. Each that replaces or removes something gives the store a new data key and
// encrypts everything anew, in one transaction, so that what opened the store before opens nothing that is
// written later. Slots that stay get the new key without their secrets. A key file that is replaced is erased
// if it was made for this very store; if not, it may also be another store's: then it is left alone, and this
// store gets a new id.

/// Has a passphrase open the store in place of its key files and of the passphrase that opened it; fails with
/// errSecParam for an empty one.
void secSetPassphrase(SecFileSession& session, SecView passphrase);
/// Has a new key file open the store in place of its passphrases; fails with errSecParam if it has none.
void secRemovePassphrase(SecFileSession& session);

/// Add a way to open the store and leave the others, and the keys, as they are; fail with errSecParam if
/// there are as many as a store can have.
///@{
void secAddPassphrase(SecFileSession& session, SecView passphrase);
void secAddKeyFile(SecFileSession& session);
void secAddDesktop(SecFileSession& session, const SecDesktopOptions& options);
///@}
/// Removes the slot with this number, as hexadecimal digits. Fails with errSecParam if there is no such slot,
/// and if the others are none or all on the desktop, which nobody can copy or write down.
void secRemoveSlot(SecFileSession& session, const std::string& number);

/// Changes the keys of the store, and the one in its key file.
void secRotate(SecFileSession& session);

/// Gives the slot that opened the store a new pair if its present one is stale: within a transaction that
/// changes the store, before its seal is written.
void secRenewStaleSlot(SecFileWork& work, const SecFileKeyring& keyring);
