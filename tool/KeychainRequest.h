#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tool/KeychainEntry.h"

/// What the command line asks of a keychain subcommand.
struct KeychainRequest {
  std::shared_ptr<SecStorage> storage;  // which is also the process's default store
  KeychainEntry entry;
  std::optional<std::string> label, newAccount, newService, newServer, newLabel;
  bool password = false, json = false, all = false;
};

/// What each subcommand does; returns the exit status. Throws Failure.
///@{
int addEntry(const KeychainRequest& request);
int listEntries(const KeychainRequest& request);
int showEntry(const KeychainRequest& request);
int updateEntry(const KeychainRequest& request);
int deleteEntries(const KeychainRequest& request);
///@}

/// Returns the password that is read from standard input without one final newline or typed at a prompt.
/// Throws Failure if it is not UTF-8.
NSRef<NSData> readPassword();
