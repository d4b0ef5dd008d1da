#pragma once

#include <Security/FileStore/SecFileSession.h>

/// Turns a store of format 1, which has to be unlocked, into one of this format, in one transaction; does
/// nothing if it has this format. Before that, a copy of the file is put next to it, its name followed by
/// ".format-1"; its key file stays.
void secMigrate(SecFileSession& session);

/// Returns the names of such copies of a store.
std::vector<std::string> secFormerCopies(const SecFileFolder& folder, const std::string& name);
/// Returns the name of the key file that opens a copy; empty if it has a passphrase, or cannot be read.
std::string secKeyFileOfCopy(const SecFileFolder& folder, const std::string& copy);
/// Erases the copies of a store, and their key files.
void secEraseFormerCopies(SecFileSession& session);
