#pragma once

#include <Security/SecFailure.h>

// Results of SQLite and statuses.

/// Throws the failure that stands for a result of SQLite, unless that is a success. To be called at once:
/// some causes are only in errno.
void secCheckSQLite(int code);

/// Returns a result that makes SQLite fail, and that secCheckSQLite turns into this status.
int secSQLiteCodeOf(OSStatus status);
