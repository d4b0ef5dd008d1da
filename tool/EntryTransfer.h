#pragma once

#include <Security/SecStorage.h>

#include <CLI/CLI.hpp>
#include <span>
#include <string>

/// What happens to an entry of a store in whose place another is to be put.
struct ExistingEntries {
  bool skip = false;     // it stays
  bool replace = false;  // it is replaced; without either, nothing at all is put

  void addOptions(CLI::App& command);
};

/// Puts the entries into the store in one transaction; one that is there already, with the same content, is
/// left as it is. Returns how many are there now, and how many were skipped, for people. Throws Failure,
/// which lists the entries with other content if there are any and they are to stay.
std::string putEntries(SecStorage& storage, std::span<const SecRow> rows, const ExistingEntries& existing);
