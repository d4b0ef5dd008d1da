#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The constants of the store file. A change of anything here is a new format.

constexpr std::uint32_t secFileFormat = 2;                // the file's user_version
constexpr std::uint32_t secFileFormat1 = 1;               // that of the format which is read and migrated
constexpr std::uint32_t secFileApplication = 0x56584B53;  // the file's application_id: "VXKS"
constexpr std::size_t secFilePageSize = 4096;

/// As many as leave the seal, which has a tag of each bucket, on one page of the file.
constexpr std::size_t secBucketCount = 240;

/// The name of the empty table that puts the file's number, 32 hexadecimal digits after this, on page 1.
constexpr std::string_view secFileNumberTable = "file_";

/// The table of all records, as it is kept in the file.
constexpr const char* secFileRecordTable =
    "CREATE TABLE record(number INTEGER PRIMARY KEY,body BLOB NOT NULL)";

/// The numbers of records: copies of the header, the seal, buckets 0 to 239, entries.
///@{
constexpr std::int64_t secHeaderNumbers[] = {-1, -2, -3};
constexpr std::int64_t secSealNumber = 0;
constexpr std::int64_t secFirstBucketNumber = 1;
constexpr std::int64_t secFirstEntryNumber = std::int64_t{1} << 32;
///@}
