#pragma once

#include <functional>
#include <memory>
#include <string>

#include <Security/SecFailure.h>

#include "tests/support/KeychainSupport.h"
#include "tests/support/SecStorageModel.h"

/// What holds of every kind of store.
class SecStorageConformance {
 public:
  using MakeStorage = std::function<std::shared_ptr<SecStorage>()>;
  /// Whether all content can be kept, or only what the desktop's services can hold.
  enum class Content { any, ofDesktops };

  /// Runs scripts/SecItem.txt and what can be told only below the four functions, on stores that
  /// `makeStorage` makes empty, and compares as many operations with the model.
  static void expect(const MakeStorage& makeStorage, Content content = Content::any,
                     int operations = 50'000) {
    const auto begin = [&] { secSetDefaultStorage(makeStorage()); };
    const auto step = [&](const std::string& question, const std::string& written) {
      const auto [answer, onDesktops] = cut(written, " ! ");
      expectStep(question, content == Content::any || onDesktops.empty() ? answer : onDesktops);
    };
    EXPECT_GT(runScript("SecItem.txt", begin, step), 150u) << "the table was not found whole";
    begin();
    expectTransactions();
    begin();
    SecStorageComparison(16).run(operations);
    secSetDefaultStorage(nullptr);
  }

 private:
  static void expectStep(const std::string& question, const std::string& answer) {
    const auto [operation, maps] = cut(question, " ");
    const auto [first, second] = cut(maps, " / ");
    const auto [status, expected] = cut(answer, " | ");
    NSRefPtr<NSObject> result;
    EXPECT_EQ(perform(operation, writtenMap(first), writtenMap(second), result), std::stol(status));
    const NSRefPtr<NSObject> wanted = writtenResult(expected);
    EXPECT_TRUE(result ? result->isEqual(wanted) : !wanted) << shown(result);
  }

  /// Nothing, a map, or an array of maps, each in brackets.
  static NSRefPtr<NSObject> writtenResult(const std::string& written) {
    if (written.empty()) return nullptr;
    if (written.front() != '[') return writtenMap(written);
    const auto maps = NSMutableArray::array();
    for (std::string rest = written; !rest.empty(); rest = cut(rest, "] ").second)
      maps->addObject(writtenMap(cut(rest.substr(1), "]").first));
    return maps;
  }

  static OSStatus perform(const std::string& operation, const NSRefPtr<NSDictionary>& first,
                          const NSRefPtr<NSDictionary>& second, NSRefPtr<NSObject>& result) {
    if (operation == "add") return SecItemAdd(first, &result);
    if (operation == "copy") return SecItemCopyMatching(first, &result);
    if (operation == "update") return SecItemUpdate(first, second);
    if (operation == "delete") return SecItemDelete(first);
    throw std::invalid_argument("no operation " + operation);
  }

  /// A transaction is kept as a whole when its work succeeds; else, and where it only reads, not at all.
  static void expectTransactions() {
    std::shared_ptr<SecStorage> storage;
    ASSERT_EQ(secCopyDefaultStorage(storage), errSecSuccess);
    const auto entry = [](std::u16string_view account) {
      SecEntry made;
      made.attributes.account.emplace(account);
      return made;
    };
    const auto add = [&](SecTransaction& transaction) { transaction.insert(entry(u"c")); };
    const auto changeAll = [&](OSStatus answer) {
      return [&, answer](SecTransaction& transaction) {
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
        secCheck(answer);
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
  }
};
