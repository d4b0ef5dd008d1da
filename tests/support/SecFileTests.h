#pragma once

#include <Security/SecFailure.h>
#include <Security/SecFileStorage.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <string>

#include "tests/support/Files.h"

/// A new folder for the files of one store. It is in memory if the system has such a place: a process that is
/// killed leaves the same files there as on a disk, and everything is many times faster.
struct TemporaryPlace : TemporaryFolder {
  TemporaryPlace() : TemporaryFolder(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") {}
  SecFilePlace place = {root / "data/credentials.store", root / "keys", true, false, root / "credentials"};
};

inline SecSecret secretFrom(std::string_view text) { return SecSecret(std::as_bytes(std::span(text))); }

inline std::string textFrom(const SecSecret& secret) {
  return {reinterpret_cast<const char*>(secret.bytes().data()), secret.bytes().size()};
}

/// A store of passwords by account, all of one service, for a host that does not use the library's objects.
class Passwords {
 public:
  /// The password of an account; no value if there is no such account.
  using Found = std::optional<std::string>;
  static constexpr auto make = SecFileStorage::Missing::make;
  static constexpr auto refuse = SecFileStorage::Missing::refuse;

  OSStatus open(const SecFilePlace& place, SecFileStorage::Missing missing = make) {
    return SecFileStorage::open(place, missing, storage);
  }

  OSStatus add(const std::string& account, std::string_view password) {
    return change([&](SecTransaction& store) { store.insert(entryOf(account, password)); });
  }

  OSStatus update(const std::string& account, std::string_view password) {
    return changeFound(account, [&](SecTransaction& store, const SecRow& row) {
      store.replace(row.number, named(account), secretFrom(password));
    });
  }

  OSStatus remove(const std::string& account) {
    return changeFound(account, [](SecTransaction& store, const SecRow& row) { store.remove(row.number); });
  }

  OSStatus look(const std::string& account, Found& found) {
    found.reset();
    return storage->transact(SecStorage::Access::read, [&](SecTransaction& store) {
      store.find({named(account)}, SecSecrets::read, [&](SecRow row) {
        found = textFrom(row.entry.secret);
        return false;
      });
    });
  }

  OSStatus all(std::map<std::string, std::string>& held) {
    held.clear();
    return storage->transact(SecStorage::Access::read, [&](SecTransaction& store) {
      store.find({}, SecSecrets::read, [&](SecRow row) {
        const SecText& account = *row.entry.attributes.account;
        held[std::string(account.begin(), account.end())] = textFrom(row.entry.secret);
        return true;
      });
    });
  }

  static SecAttributes named(const std::string& account) {
    SecAttributes attributes;
    attributes.account.emplace(account.begin(), account.end());
    attributes.service.emplace(u"service");
    return attributes;
  }

  static SecEntry entryOf(const std::string& account, std::string_view password) {
    return {named(account), secretFrom(password)};
  }

  /// Calls `action` with the transaction and the row of an account that exists.
  template <class Action>
  OSStatus changeFound(const std::string& account, Action action, SecSecrets secrets = SecSecrets::skip) {
    return change([&](SecTransaction& store) {
      std::optional<SecRow> found;
      store.find({named(account)}, secrets, [&](SecRow row) {
        found = std::move(row);
        return false;
      });
      secRequire(found.has_value(), errSecItemNotFound);
      action(store, *found);
    });
  }

  std::unique_ptr<SecFileStorage> storage;

 private:
  OSStatus change(const SecStorage::Work& work) {
    return storage->transact(SecStorage::Access::change, work);
  }
};
