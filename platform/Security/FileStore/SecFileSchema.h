#pragma once

#include <Security/FileStore/SecFileDatabase.h>

/// Makes the tables of a store. The number of the file, which never changes, is in the name of an empty one:
/// so it is on page 1, where a journal has to have it (secJudgeJournal).
void secMakeTables(SecFileDatabase& database, const SecTag& fileNumber);

/// Fails with errSecDecode unless the tables are those of a store with this number, and nothing else.
void secCheckTables(SecFileDatabase& database, const SecTag& fileNumber);
