#pragma once

#include <Security/FileStore/SecFileBytes.h>
#include <Security/SecEntry.h>

/// What is known of an entry without its secret.
struct SecFileEntryHead {
  std::int64_t order = 0;    ///< its place in the order of adding
  std::uint64_t change = 0;  ///< the count of changes when it was written
  SecTag secret{};           ///< the tag of the secret's box
  SecAttributes attributes;
};

/// Heads and secrets as bytes, padded with zeros to a multiple of 64, so that their size shows little of the
/// lengths within. Every value that std::optional and SecText can hold is read as it was written; reading
/// fails with errSecDecode for anything that was not written here.
///@{
SecSecretWriter secEncodeHead(const SecFileEntryHead& head);
SecFileEntryHead secDecodeHead(SecView bytes);
SecSecretWriter secEncodeSecret(SecView secret);
SecSecret secDecodeSecret(SecView bytes);
///@}

/// The parts of which these consist.
///@{
SecAttributes secTakeAttributes(SecByteReader& reader);
SecSecret secTakeSecret(SecByteReader& reader);
void secRequirePadding(const SecByteReader& reader);
///@}
