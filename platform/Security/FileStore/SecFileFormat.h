#pragma once

#include <cstddef>
#include <cstdint>

// What the store file says of itself. A change of anything here is a new format.

constexpr std::uint32_t secFileFormat = 1;                // the file's user_version
constexpr std::uint32_t secFileApplication = 0x56584B53;  // the file's application_id: "VXKS"
/// As many as leave the row of the store, which holds a sum of each, on one page of the file.
constexpr std::size_t secBucketCount = 240;

/// The tables, each statement as it is kept in the file:
/// - store: one row, the id of the store, its data key, wrapped, and the seal over all of its directory;
/// - directory: what is where, in buckets that the seal covers one by one;
/// - entry: what is kept, encrypted.
constexpr const char* secFileSchema[] = {
    "CREATE TABLE directory(bucket INTEGER PRIMARY KEY,lines BLOB NOT NULL)",
    "CREATE TABLE entry(number INTEGER PRIMARY KEY,body BLOB NOT NULL)",
    "CREATE TABLE store(one INTEGER PRIMARY KEY,id BLOB NOT NULL,slot BLOB NOT NULL,seal BLOB NOT NULL)",
};
