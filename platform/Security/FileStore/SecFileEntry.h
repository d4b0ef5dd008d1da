#pragma once

#include <Security/FileStore/SecFileBucket.h>
#include <Security/FileStore/SecFileEntryCoding.h>

// An entry's record consists of two boxes, its head and its secret, so that each can be read or replaced
// without the other. Both are bound to the format, the store and the record's number.

/// Identifies the record of an entry, and the keys that it is under.
struct SecFileEntryPlace {
  const SecFileKeys& keys;
  const SecStoreID& store;
  std::int64_t number;
};

/// The two boxes in a record's content; fails with errSecDecode if there are no such boxes.
struct SecFileEntryBoxes {
  explicit SecFileEntryBoxes(SecView content);
  SecView head;
  SecView secret;
};

/// Open a box; fail with errSecDecode if it is another place's, or not the secret that the head was written
/// with.
///@{
SecFileEntryHead secOpenHead(const SecFileEntryPlace& place, const SecFileEntryBoxes& boxes);
SecSecret secOpenSecret(const SecFileEntryPlace& place, const SecFileEntryHead& head,
                        const SecFileEntryBoxes& boxes);
///@}
/// Returns the content of a record, with a new secret or with the box of the present one. Fails with
/// errSecDataTooLarge for more than a record can hold.
///@{
SecBytes secSealEntry(const SecFileEntryPlace& place, SecFileEntryHead& head, SecView secret);
SecBytes secSealHead(const SecFileEntryPlace& place, const SecFileEntryHead& head, SecView secretBox);
///@}

/// Reads the content of a line's entry; fails with errSecDecode unless it is what was written for that line.
SecBytes secReadEntry(const SecFileContext& context, const SecFileLine& line);
/// Writes the content of an entry, and returns its line.
SecFileLine secWriteEntry(const SecFileContext& context, std::int64_t number, const SecFileEntryHead& head,
                          SecView content);
/// Removes an entry and returns how many bytes its record had.
std::size_t secRemoveEntry(const SecFileContext& context, std::int64_t number);

/// Returns how many entries there are, as far as the file says.
std::uint64_t secCountEntries(SecFileDatabase& database);
/// Returns a number for a new entry: random, since an order of numbers would show the order of adding.
std::int64_t secNewEntryNumber();
