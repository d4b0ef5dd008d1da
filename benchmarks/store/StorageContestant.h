#pragma once

#include <Security/SecStorage.h>

#include <span>
#include <stdexcept>
#include <string_view>

#include "Contestant.h"

/// A store of ours, driven through its transactions.
class StorageContestant : public Contestant {
 public:
  void fill(std::size_t count) override {
    change([&](SecTransaction& store) {
      for (std::size_t account = 0; account < count; ++account) store.insert(entryOf(account, "password"));
    });
  }

  void add(std::size_t account) override {
    change([&](SecTransaction& store) { store.insert(entryOf(account, "password")); });
  }

  bool look(std::size_t account) override {
    bool found = false;
    const auto take = [&](const SecRow& row) {
      found = !row.entry.secret.bytes().empty();
      return false;
    };
    run(SecStorage::Access::read, [&](SecTransaction& store) {
      store.find({entryOf(account, "").attributes}, SecSecrets::read, take);
    });
    return found;
  }

  void update(std::size_t account) override {
    changeFound(account, [&](SecTransaction& store, std::int64_t number) {
      store.replace(number, entryOf(account, "").attributes, entryOf(account, "new password").secret.clone());
    });
  }

  void remove(std::size_t account) override {
    changeFound(account, [](SecTransaction& store, std::int64_t number) { store.remove(number); });
  }

  void run(SecStorage::Access access, const SecStorage::Work& work) {
    require(openStorage()->transact(access, work));
  }

 protected:
  /// Returns the store to use for an operation; opening it is part of what is measured.
  virtual std::shared_ptr<SecStorage> openStorage() = 0;

  static void require(OSStatus status) {
    if (status != errSecSuccess) throw std::runtime_error(secStatusMessage(status));
  }

 private:
  static SecEntry entryOf(std::size_t account, std::string_view password) {
    const std::string digits = std::to_string(account);
    SecEntry entry;
    entry.attributes.account.emplace(digits.begin(), digits.end());
    entry.attributes.service.emplace(u"benchmark");
    entry.secret = SecSecret(std::as_bytes(std::span(password)));
    return entry;
  }

  void change(const SecStorage::Work& work) { run(SecStorage::Access::change, work); }

  template <class Action>
  void changeFound(std::size_t account, Action action) {
    change([&](SecTransaction& store) {
      std::int64_t number = 0;
      store.find({entryOf(account, "").attributes}, SecSecrets::skip, [&](const SecRow& row) {
        number = row.number;
        return false;
      });
      action(store, number);
    });
  }
};
