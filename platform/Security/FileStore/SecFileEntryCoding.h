#pragma once

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecEntry.h>

/// The content of an entry as one run of bytes, padded to whole steps of 64 so that its size tells little
/// of the lengths within. Every value that std::optional and SecText can hold comes back as it was.
SecSecretWriter secEncodeEntry(const SecEntry& entry);

/// Reads what secEncodeEntry wrote; fails with errSecDecode for anything else.
SecEntry secDecodeEntry(SecView bytes);
