#pragma once

#include <Security/FileStore/SecFileSession.h>
#include <Security/SecFileStorage.h>

// What is done with an open store.

/// Runs `work` as one transaction; the first change migrates a store of format 1.
void secTransact(SecFileSession& session, SecStorage::Access access, const SecStorage::Work& work);
void secVerify(SecFileSession& session);
SecFileInfo secInfo(SecFileSession& session);
/// Accepts a store that went back to a former state.
void secAccept(SecFileSession& session);
/// Writes the file anew without unused pages, if nobody else is using it.
void secCompact(SecFileSession& session);
