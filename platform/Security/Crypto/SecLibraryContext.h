#pragma once

#include <openssl/types.h>

/// Returns a library context of our own, with the default provider: what the host's configuration excludes or
/// prefers does not matter in it. It is never freed, since a host's exit handlers may still use a store.
/// Throws SecFailure with errSecAllocate if it cannot be made.
OSSL_LIB_CTX* secLibraryContext();
