#include <new>

#include "SecStorageConformance.h"

namespace {

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

TEST_F(SecItemTest, MapsAreNeitherKeptNorChanged) {
  const auto map =
      writtenMap("class=generic account=ann valueData=secret returnAttributes=1 returnData=1")->mutableCopy();
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
