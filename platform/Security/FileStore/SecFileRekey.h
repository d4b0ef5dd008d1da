#pragma once

#include <Security/FileStore/SecFileSeal.h>

/// Encrypts every entry and every bucket anew, one entry at a time: from the keys, and the store's id, of
/// `from` to those of `to`. Everything is checked against the seal first and read again after it was written;
/// the seal is brought up to date, but not written.
void secRekey(const SecFileContext& from, SecFileSeal& seal, const SecFileContext& to);
