#include "Security/FileStore/SecFileEntryCoding.h"

#include <optional>

#include "tests/support/Fuzz.h"

// The record of one entry in a store file: any bytes are read as an entry or reported as damaged, and nothing
// of an entry is lost when it is written again.
namespace {

std::optional<SecFileEntryHead> decoded(SecView bytes) {
  try {
    return secDecodeHead(bytes);
  } catch (const SecFailure& failure) {
    fuzzRequire(failure.status == errSecDecode, "anything but a record is reported as damaged");
    return std::nullopt;
  }
}

bool areEqual(SecView first, SecView second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = fuzzBytes(FuzzInput(data, size).rest());
  const auto entry = decoded(bytes);
  if (!entry) return 0;
  const SecSecretWriter record = secEncodeHead(*entry);
  const auto again = decoded(record.bytes());
  fuzzRequire(again && again->attributes == entry->attributes, "the attributes are written as they were");
  fuzzRequire(again->order == entry->order && again->change == entry->change, "so are its numbers");
  fuzzRequire(size % 64 != 0 || areEqual(record.bytes(), bytes), "an entry has one record");
  return 0;
}
