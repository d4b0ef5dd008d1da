#include <Security/SecItem.h>
#include <Security/SecMemoryStorage.h>

#include <new>

#include "KeychainSupport.h"
#include "SecStorageConformance.h"

namespace {

SecEntry entryOf(std::u16string_view account) {
  SecEntry entry;
  entry.attributes.account.emplace(account);
  return entry;
}

std::size_t countOf(SecStorage& storage) {
  SecStorageInfo info;
  EXPECT_EQ(storage.copyInfo(info), errSecSuccess);
  return info.entries;
}

class FailingAllocation : public SecStorage {
 public:
  OSStatus transact(Access, const Work&) override { throw std::bad_alloc(); }
  OSStatus copyInfo(SecStorageInfo&) override { return errSecSuccess; }
};

using SecItemTest = KeychainTest;

}  // namespace

TEST(SecMemoryStorage, Conforms) {
  SecStorageConformance::expect([] { return std::make_shared<SecMemoryStorage>(); });
}

TEST(SecMemoryStorage, AFailedTransactionIsUndone) {
  SecMemoryStorage storage;
  const auto change = [&](OSStatus answer, const SecStorage::Work& work) {
    return storage.transact(SecStorage::Access::change, [&](SecTransaction& transaction) {
      EXPECT_EQ(work(transaction), errSecSuccess);
      return answer;
    });
  };
  const auto accounts = [&] {
    std::u16string all;
    storage.transact(SecStorage::Access::read, [&](SecTransaction& transaction) {
      return transaction.find({}, [&](const SecRow& row) {
        all += std::u16string_view(*row.entry.attributes.account);
        return true;
      });
    });
    return all;
  };
  change(errSecSuccess, [](SecTransaction& transaction) { return transaction.insert(entryOf(u"a")); });
  change(errSecSuccess, [](SecTransaction& transaction) { return transaction.insert(entryOf(u"b")); });
  const auto mixed = [](SecTransaction& transaction) {
    transaction.replace(1, entryOf(u"x"));
    transaction.replace(1, entryOf(u"y"));
    transaction.remove(2);
    transaction.insert(entryOf(u"c"));
    return transaction.remove(1);
  };
  EXPECT_EQ(change(errSecIO, mixed), errSecIO);
  EXPECT_EQ(accounts(), u"ab");
  EXPECT_EQ(change(errSecSuccess, mixed), errSecSuccess);
  EXPECT_EQ(storage.transact(SecStorage::Access::read, mixed), errSecReadOnly);
  EXPECT_EQ(accounts(), u"c");
}

TEST_F(SecItemTest, MapsAreNeitherKeptNorChanged) {
  const auto map = NSMutableDictionary::dictionaryWithObjectsAndKeys(
      {{kSecClassGenericPassword, kSecClass},
       {"ann", kSecAttrAccount},
       {bytes("secret"), kSecValueData},
       {NSNumber::numberWithBool(true), kSecReturnAttributes},
       {NSNumber::numberWithBool(true), kSecReturnData}});
  const std::string before = shown(map);
  RefPtr<NSDictionary> added, found, foundAgain;
  ASSERT_EQ(SecItemAdd(map, &added), errSecSuccess);
  ASSERT_EQ(SecItemCopyMatching(map, &found), errSecSuccess);
  EXPECT_EQ(SecItemUpdate(map, map), errSecSuccess);
  EXPECT_EQ(shown(map), before);
  EXPECT_EQ(shown(added), "class=generic password account=ann");
  dynamicCast<NSMutableDictionary>(found)->removeAllObjects();
  map->setObject(bytes("other"), kSecValueData);
  ASSERT_EQ(SecItemCopyMatching(map, &foundAgain), errSecSuccess);
  EXPECT_EQ(shown(foundAgain), "class=generic password account=ann valueData=secret");
  EXPECT_TRUE(dynamicCast<NSData>(foundAgain->objectForKey(kSecValueData))->holdsSecret());
}

TEST_F(SecItemTest, AFailureOfTheStoreIsTheStatusAndLeavesTheResultAlone) {
  const auto query = VXGenericKeychainItem::queryDictionaryWithUsername("ann", "mail");
  query->setObject(NSNumber::numberWithBool(true), kSecReturnAttributes);
  const RefPtr<NSDictionary> untouched = NSDictionary::dictionary();
  RefPtr<NSDictionary> result = untouched;
  const auto expect = [&](OSStatus status) {
    EXPECT_EQ(SecItemAdd(query, &result), status);
    EXPECT_EQ(SecItemCopyMatching(query, &result), status);
    EXPECT_EQ(SecItemUpdate(query, query), status);
    EXPECT_EQ(SecItemDelete(query), status);
    EXPECT_EQ(result.get(), untouched.get());
  };
  for (const OSStatus status : {errSecIO, errSecDiskFull, errSecBusy, errSecDecode}) {
    answerAlways(status);
    expect(status);
  }
  secSetDefaultStorage(std::make_shared<FailingAllocation>());
  expect(errSecAllocate);
}

TEST_F(SecItemTest, TheDefaultStoreIsTheOneThatWasChosen) {
  const auto first = std::make_shared<SecMemoryStorage>(), second = std::make_shared<SecMemoryStorage>();
  const auto query = VXGenericKeychainItem::queryDictionaryWithUsername("ann", "mail");
  secSetDefaultStorage(first);
  EXPECT_EQ(SecItemAdd(query), errSecSuccess);
  secSetDefaultStorage(second);
  EXPECT_EQ(SecItemCopyMatching(query), errSecItemNotFound);
  std::shared_ptr<SecStorage> used;
  ASSERT_EQ(secCopyDefaultStorage(used), errSecSuccess);
  EXPECT_EQ(used, second);
  EXPECT_EQ(countOf(*first), 1u);
}
