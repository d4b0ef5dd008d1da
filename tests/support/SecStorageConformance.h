#pragma once

#include <functional>
#include <memory>
#include <string>

#include <Security/SecFailure.h>

#include "tests/support/KeychainSupport.h"
#include "tests/support/SecStorageModel.h"

/// What must hold for every kind of store.
class SecStorageConformance {
 public:
  using MakeStorage = std::function<std::shared_ptr<SecStorage>()>;
  /// What is expected of a storage, unless it is the default.
  struct Terms {
    bool holdsOnlyDesktopText = false;  ///< whether some steps have the status after their exclamation mark
    int operations = 25'000;            ///< how many are compared with the model
    std::function<bool(OSStatus)> isEnd = nullptr;  ///< whether a status ends the comparison
  };

  /// Runs scripts/SecItem.txt and the checks that need transactions, on empty stores from `makeStorage`, and
  /// compares random operations with the model.
  static void expect(const MakeStorage& makeStorage) { expect(makeStorage, Terms()); }
  static void expect(const MakeStorage& makeStorage, const Terms& terms) {
    const auto begin = [&] { secSetDefaultStorage(makeStorage()); };
    const auto step = [&](const std::string& operation, const std::string& written) {
      const auto [result, onDesktops] = cut(written, " ! ");
      expectStep(operation, terms.holdsOnlyDesktopText && !onDesktops.empty() ? onDesktops : result);
    };
    EXPECT_GT(runScript("SecItem.txt", begin, step), 150u) << "the script is incomplete";
    begin();
    expectTransactions();
    begin();
    expectLongValues();
    begin();
    SecStorageComparison(16, terms.isEnd).run(terms.operations);
    secSetDefaultStorage(nullptr);
  }

 private:
  static void expectLongValues() {
    for (const std::size_t size : std::initializer_list<std::size_t>{1'000, 100'000}) {
      const std::string entry = "class=generic service=long account=" + std::string(size, 'a');
      const std::string secret = " valueData=" + std::string(size, 's');
      expectStep("add " + entry + secret, "0");
      expectStep("add " + entry, "-25299");
      expectStep("copy " + entry + " returnAttributes=1 returnData=1", "0 | " + entry + secret);
      expectStep("update " + entry + " / account=short", "0");
      expectStep("copy class=generic account=short returnData=1", "0 |" + secret);
      expectStep("delete class=generic service=long", "0");
    }
  }

  static void expectStep(const std::string& step, const std::string& expected) {
    const auto [operation, dictionaries] = cut(step, " ");
    const auto [first, second] = cut(dictionaries, " / ");
    const auto [status, written] = cut(expected, " | ");
    NSRefPtr<NSObject> result;
    EXPECT_EQ(perform(operation, writtenMap(first), writtenMap(second), result), std::stol(status));
    const NSRefPtr<NSObject> wanted = writtenResult(written);
    EXPECT_TRUE(result ? result->isEqual(wanted) : !wanted) << shown(result);
  }

  /// Returns nil, a dictionary, or an array of dictionaries in brackets.
  static NSRefPtr<NSObject> writtenResult(const std::string& written) {
    if (written.empty()) return nullptr;
    if (written.front() != '[') return writtenMap(written);
    const auto dictionaries = NSMutableArray::array();
    for (std::string rest = written; !rest.empty(); rest = cut(rest, "] ").second)
      dictionaries->addObject(writtenMap(cut(rest.substr(1), "]").first));
    return dictionaries;
  }

  static OSStatus perform(const std::string& operation, const NSRefPtr<NSDictionary>& first,
                          const NSRefPtr<NSDictionary>& second, NSRefPtr<NSObject>& result) {
    if (operation == "add") return SecItemAdd(first, &result);
    if (operation == "copy") return SecItemCopyMatching(first, &result);
    if (operation == "update") return SecItemUpdate(first, second);
    if (operation == "delete") return SecItemDelete(first);
    throw std::invalid_argument("no operation " + operation);
  }

  /// A transaction is kept as a whole if its work succeeds; if that fails or may only read, nothing is kept.
  static void expectTransactions() {
    std::shared_ptr<SecStorage> storage;
    ASSERT_EQ(secCopyDefaultStorage(storage), errSecSuccess);
    const auto entry = [](std::u16string_view account) {
      SecEntry made;
      made.attributes.account.emplace(account);
      return made;
    };
    const auto add = [&](SecTransaction& transaction) { transaction.insert(entry(u"c")); };
    const auto changeAll = [&](OSStatus status) {
      return [&, status](SecTransaction& transaction) {
        std::vector<std::int64_t> numbers;
        transaction.find({}, SecSecrets::skip, [&](const SecRow& row) {
          numbers.push_back(row.number);
          return true;
        });
        transaction.replace(numbers.at(0), entry(u"x").attributes, std::nullopt);
        transaction.replace(numbers.at(0), entry(u"y").attributes, SecSecret());
        transaction.remove(numbers.at(1));
        add(transaction);
        transaction.remove(numbers.at(0));
        secCheck(status);
      };
    };
    for (const char* account : {"a", "b"})
      expectStep(std::string("add class=generic account=") + account, "0");
    EXPECT_EQ(storage->transact(SecStorage::Access::change, changeAll(errSecIO)), errSecIO);
    EXPECT_EQ(storage->transact(SecStorage::Access::read, add), errSecReadOnly);
    expectStep("copy class=generic returnAttributes=1", "0 | class=generic account=a");
    expectStep("copy class=generic account=b", "0");
    expectStep("copy class=generic account=c", "-25300");
    EXPECT_EQ(storage->transact(SecStorage::Access::change, changeAll(errSecSuccess)), errSecSuccess);
    expectStep("copy class=generic returnAttributes=1", "0 | class=generic account=c");
    expectStep("copy class=generic account=b", "-25300");
    SecStorageInfo info;
    EXPECT_EQ(storage->copyInfo(info), errSecSuccess);
    EXPECT_EQ(info.entries, 1u);
  }
};
