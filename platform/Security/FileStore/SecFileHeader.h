#pragma once

#include <vector>

#include <Security/FileStore/SecFileRecord.h>
#include <Security/FileStore/SecFileSlot.h>

/// What is known of a store before it is unlocked. Kept three times, in different pages. Its hash only
/// detects damage; whether the store's owner wrote it is known once the seal, which covers it, was verified.
struct SecFileHeader {
  SecStoreID store{};
  SecTag keyID{};       ///< of the data key in use
  SecTag fileNumber{};  ///< of the file, see secJudgeJournal
  std::vector<SecFileSlot> slots;
};

constexpr std::size_t secMostSlots = 8;

/// The content of the header's records: more than half a page, so that no two of them share one.
constexpr std::size_t secHeaderSize = 3000;

/// The content of a header's record, which ends with its SHA-256 digest.
SecBytes secEncodeHeader(const SecFileHeader& header);
/// Reads what secEncodeHeader wrote; fails with errSecDecode for anything else.
SecFileHeader secDecodeHeader(SecView content);
SecDigest secHeaderDigest(SecView content);

/// Writes all copies of the header; returns its digest.
SecDigest secWriteHeader(SecFileDatabase& database, const SecFileHeader& header);
