#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tool/EntryTransfer.h"
#include "tool/KeychainEntry.h"

/// What the command line asks of a keychain subcommand.
struct KeychainRequest {
  std::shared_ptr<SecStorage> storage;  // which is also the process's default store
  KeychainEntry entry;
  std::optional<std::string> label, newAccount, newService, newServer, newLabel;
  bool password = false, json = false, all = false;
  std::optional<std::string> file;
  ExistingEntries existing;
};

/// What each subcommand does; returns the exit status. Throws Failure.
///@{
int addEntry(const KeychainRequest& request);
int listEntries(const KeychainRequest& request);
int showEntry(const KeychainRequest& request);
int updateEntry(const KeychainRequest& request);
int deleteEntries(const KeychainRequest& request);
int exportEntries(const KeychainRequest& request);
int importEntries(const KeychainRequest& request);
///@}

/// Returns the password that is read from standard input without one final newline or typed at a
/// terminal, twice. Throws Failure if it is not UTF-8 or not the same both times.
NSRef<NSData> readPassword();
