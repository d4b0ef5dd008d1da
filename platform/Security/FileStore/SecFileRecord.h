#pragma once

#include <cstdint>

#include <Security/FileStore/SecFileBytes.h>
#include <Security/FileStore/SecFileDatabase.h>

/// What a record is; the numbers are the first eight bytes of the record, by which it is found in raw pages.
enum class SecFileRecordKind : std::uint64_t {
  header = 0xE1564B5348454144,
  seal = 0xE1564B535345414C,
  bucket = 0xE1564B534255434B,
  entry = 0xE1564B53454E5452,
};

/// Every record begins with its kind (8 bytes), its length as a whole (4) and its number (8), so that it can
/// be read without the table that it is kept in.
constexpr std::size_t secRecordOverhead = 8 + 4 + 8;

struct SecFileRecord {
  SecFileRecordKind kind;
  std::int64_t number = 0;
};

/// Puts content into a record.
SecBytes secFrame(SecFileRecord record, SecView content);
/// Returns the content; fails with errSecDecode if `bytes` are not that record.
SecView secUnframe(SecFileRecord record, SecView bytes);

/// Reads the content of a record; empty if there is no such record, errSecDecode if it is malformed.
SecBytes secReadRecord(SecFileDatabase& database, SecFileRecord record);
/// Writes a record, in place of one that exists.
void secWriteRecord(SecFileDatabase& database, SecFileRecord record, SecView content);
/// Fails with errSecDecode if there is no such record.
void secRemoveRecord(SecFileDatabase& database, SecFileRecord record);
