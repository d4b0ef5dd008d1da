#pragma once

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecSecret.h>

// Recovery passphrases: 128 random bits and 12 bits of SHA-256 over them, to detect errors in typing, as 28
// letters of base 32 (RFC 4648, section 6) in groups of four.

/// Returns a new one as it is shown.
SecSecret secMakeRecoveryPassphrase();

/// Returns the passphrase that was meant: of a recovery passphrase, in whatever case and groups it was typed,
/// its letters; any other as it is.
SecSecret secMeantPassphrase(SecView typed);
