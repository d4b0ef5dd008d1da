#pragma once

#include <Foundation/FoundationExport.h>

#include <Security/SecBase.h>

/// Gives the English message of `status`, the same one always and never null; a number that is not one of
/// SecStatus gets a text of its own. Safe from any thread.
FOUNDATION_EXPORT const char* secStatusMessage(OSStatus status) noexcept;
