#pragma once

#include <Security/FileStore/SecFileDatabase.h>
#include <Security/FileStore/SecFileKeys.h>

/// What is needed to read and write the records of one unlocked store.
struct SecFileContext {
  SecFileDatabase& database;
  const SecFileKeys& keys;
  const SecStoreID& store;
};
