#include "tests/support/SecStorageConformance.h"

using SecItemTest = KeychainTest;

TEST(SecMemoryStorage, Conforms) {
  SecStorageConformance::expect([] { return std::make_shared<SecMemoryStorage>(); });
}

TEST_F(SecItemTest, MapsAreNeitherKeptNorChanged) {
  const auto map =
      writtenMap("class=generic account=ann valueData=secret returnAttributes=1 returnData=1")->mutableCopy();
  const std::string before = shown(map);
  NSRefPtr<NSDictionary> added, found, foundAgain;
  ASSERT_EQ(SecItemAdd(map, &added), errSecSuccess);
  ASSERT_EQ(SecItemCopyMatching(map, &found), errSecSuccess);
  EXPECT_EQ(SecItemUpdate(map, map), errSecSuccess);
  EXPECT_EQ(shown(map), before);
  EXPECT_EQ(shown(added), "class=generic password account=ann");
  NSDynamicCast<NSMutableDictionary>(found)->removeAllObjects();
  map->setObject(dataOf("other"), kSecValueData);
  ASSERT_EQ(SecItemCopyMatching(map, &foundAgain), errSecSuccess);
  EXPECT_EQ(shown(foundAgain), "class=generic password account=ann valueData=secret");
  EXPECT_TRUE(NSDynamicCast<NSData>(foundAgain->objectForKey(kSecValueData))->holdsSecret());
}

TEST_F(SecItemTest, AFailureOfTheStoreIsTheStatusAndLeavesTheResultAlone) {
  const auto query = writtenMap("class=generic account=ann returnAttributes=1");
  const NSRefPtr<NSDictionary> untouched = NSDictionary::dictionary();
  NSRefPtr<NSDictionary> result = untouched;
  for (const OSStatus status : {errSecIO, errSecDiskFull, errSecBusy, errSecDecode, errSecAllocate}) {
    answerAlways(status);
    EXPECT_EQ(SecItemAdd(query, &result), status);
    EXPECT_EQ(SecItemCopyMatching(query, &result), status);
    EXPECT_EQ(SecItemUpdate(query, query), status);
    EXPECT_EQ(SecItemDelete(query), status);
    EXPECT_EQ(result.get(), untouched.get());
  }
}

TEST_F(SecItemTest, TheDefaultStoreIsTheOneThatWasChosen) {
  for (const auto& chosen : {std::make_shared<SecMemoryStorage>(), std::make_shared<SecMemoryStorage>()}) {
    std::shared_ptr<SecStorage> used;
    SecStorageInfo info;
    secSetDefaultStorage(chosen);
    EXPECT_EQ(SecItemAdd(writtenMap("class=generic account=ann")), errSecSuccess);
    EXPECT_EQ(secCopyDefaultStorage(used), errSecSuccess);
    EXPECT_EQ(used, chosen);
    EXPECT_EQ(chosen->copyInfo(info), errSecSuccess);
    EXPECT_EQ(info.entries, 1u);
  }
}
