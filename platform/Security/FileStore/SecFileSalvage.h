#pragma once

#include <Security/FileStore/SecFileSite.h>
#include <Security/SecStorage.h>

/// Passes `visit` every entry of a damaged store that can still be decrypted, oldest first. Nothing is
/// written. One damaged page costs at most the entries that have a part of their record on it. Opens the
/// store with its key file or, if that is not possible, with the passphrase, which may be empty:
/// errSecDataNotAvailable, errSecInteractionNotAllowed or errSecAuthFailed if that is not possible either;
/// errSecDecode if nothing is left that a key could open.
void secSalvage(const SecFileOpenSite& open, SecView passphrase, const std::function<void(SecEntry)>& visit);
