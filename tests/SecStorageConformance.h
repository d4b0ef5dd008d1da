#pragma once

#include <functional>
#include <memory>
#include <string>

#include "KeychainSupport.h"

/// What holds of every kind of store.
class SecStorageConformance {
 public:
  using MakeStorage = std::function<std::shared_ptr<SecStorage>()>;

  /// Runs vectors/keychain.txt and what can be told only below the four functions, on stores that
  /// `makeStorage` makes empty.
  static void expect(const MakeStorage& makeStorage) {
    const auto begin = [&] { secSetDefaultStorage(makeStorage()); };
    EXPECT_GT(runScript("keychain.txt", begin, expectStep), 150u) << "the table was not found whole";
    secSetDefaultStorage(nullptr);
    expectTransactions(*makeStorage());
  }

 private:
  static void expectStep(const std::string& question, const std::string& answer) {
    const auto [operation, maps] = cut(question, " ");
    const auto [first, second] = cut(maps, " / ");
    const auto [status, expected] = cut(answer, " | ");
    RefPtr<NSDictionary> result;
    EXPECT_EQ(perform(operation, writtenMap(first), writtenMap(second), result), std::stol(status));
    const RefPtr<NSDictionary> wanted = writtenMap(expected.empty() ? "nil" : expected);
    EXPECT_TRUE(result ? result->isEqual(wanted) : !wanted) << shown(result);
  }

  static OSStatus perform(const std::string& operation, const RefPtr<NSDictionary>& first,
                          const RefPtr<NSDictionary>& second, RefPtr<NSDictionary>& result) {
    if (operation == "add") return SecItemAdd(first, &result);
    if (operation == "copy") return SecItemCopyMatching(first, &result);
    if (operation == "update") return SecItemUpdate(first, second);
    if (operation == "delete") return SecItemDelete(first);
    throw std::invalid_argument("no operation " + operation);
  }

  /// A transaction is kept as a whole when its work succeeds; else, and where it only reads, not at all.
  static void expectTransactions(SecStorage& storage) {
    const auto entry = [](std::u16string_view account) {
      SecEntry made;
      made.attributes.account.emplace(account);
      return made;
    };
    std::u16string accounts;
    std::vector<std::int64_t> numbers;
    const auto readAll = [&](SecTransaction& transaction) {
      accounts.clear();
      numbers.clear();
      return transaction.find({}, [&](const SecRow& row) {
        accounts += std::u16string_view(*row.entry.attributes.account);
        numbers.push_back(row.number);
        return true;
      });
    };
    const auto changeAll = [&](OSStatus answer) {
      return [&, answer](SecTransaction& transaction) {
        EXPECT_EQ(readAll(transaction), errSecSuccess);
        EXPECT_EQ(transaction.replace(numbers[0], entry(u"x")), errSecSuccess);
        EXPECT_EQ(transaction.replace(numbers[0], entry(u"y")), errSecSuccess);
        EXPECT_EQ(transaction.remove(numbers[1]), errSecSuccess);
        EXPECT_EQ(transaction.insert(entry(u"c")), errSecSuccess);
        EXPECT_EQ(transaction.remove(numbers[0]), errSecSuccess);
        return answer;
      };
    };
    const auto add = [&](SecTransaction& transaction) { return transaction.insert(entry(accounts)); };
    for (const char16_t* account : {u"a", u"b"}) {
      accounts = account;
      EXPECT_EQ(storage.transact(SecStorage::Access::change, add), errSecSuccess);
    }
    EXPECT_EQ(storage.transact(SecStorage::Access::change, changeAll(errSecIO)), errSecIO);
    EXPECT_EQ(storage.transact(SecStorage::Access::read, readAll), errSecSuccess);
    EXPECT_EQ(accounts, u"ab");
    EXPECT_EQ(storage.transact(SecStorage::Access::read, add), errSecReadOnly);
    EXPECT_EQ(storage.transact(SecStorage::Access::change, changeAll(errSecSuccess)), errSecSuccess);
    EXPECT_EQ(storage.transact(SecStorage::Access::read, readAll), errSecSuccess);
    EXPECT_EQ(accounts, u"c");
  }
};
