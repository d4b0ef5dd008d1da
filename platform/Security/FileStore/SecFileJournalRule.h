#pragma once

#include <functional>

#include <Security/FileStore/SecFileBytes.h>

/// What to do with a journal that was found next to a store.
enum class SecJournalVerdict {
  unsynced,  ///< it counts no record: its writer was stopped before it changed the store
  own,       ///< it belongs to this state of this file: it is played back
  foreign,   ///< it belongs to another file, or to another state of this one
};

/// Reads bytes of a file from an offset, fewer at its end.
using SecFileReader = std::function<SecBytes(std::size_t offset, std::size_t size)>;

/// Judges a journal before SQLite plays it back. Every transaction writes page 1 first, so a journal's first
/// record has to be that page, as it was before: with the file number of the store and with its count of
/// changes or one less. A store of format 1 has no file number, and wrote page 1 last: the count alone
/// decides there.
SecJournalVerdict secJudgeJournal(const SecFileReader& journal, SecView firstPage);
