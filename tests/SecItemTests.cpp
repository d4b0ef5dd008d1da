#include <VXFoundation/VXKeychainItem.h>

#include "tests/support/SecStorageConformance.h"

using SecItemTest = KeychainTest;

namespace {

/// Passes everything on to a store in memory, and counts the secrets that it returns.
class CountingStorage : public SecStorage {
 public:
  OSStatus transact(Access access, const Work& work) override {
    return memory_.transact(access, [&](SecTransaction& transaction) {
      Counting counting(transaction, secretsRead);
      work(counting);
    });
  }
  OSStatus copyInfo(SecStorageInfo& info) override { return memory_.copyInfo(info); }

  int secretsRead = 0;

 private:
  struct Counting : SecTransaction {
    Counting(SecTransaction& counted, int& count) : transaction(counted), secretsRead(count) {}
    void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override {
      transaction.find(query, secrets, [&](SecRow row) {
        if (secrets == SecSecrets::read) ++secretsRead;
        EXPECT_EQ(row.entry.secret.bytes().empty(), secrets == SecSecrets::skip);
        return visit(std::move(row));
      });
    }
    void insert(const SecEntry& entry) override { transaction.insert(entry); }
    void replace(std::int64_t number, const SecAttributes& attributes,
                 const std::optional<SecSecret>& secret) override {
      transaction.replace(number, attributes, secret);
    }
    void remove(std::int64_t number) override { transaction.remove(number); }

    SecTransaction& transaction;
    int& secretsRead;
  };

  SecMemoryStorage memory_;
};

}  // namespace

TEST(SecMemoryStorage, Conforms) {
  SecStorageConformance::expect([] { return std::make_shared<SecMemoryStorage>(); });
}

TEST_F(SecItemTest, DictionariesAreNeitherKeptNorChanged) {
  const auto dictionary =
      writtenMap("class=generic account=ann valueData=secret returnAttributes=1 returnData=1")->mutableCopy();
  const std::string before = shown(dictionary);
  NSRefPtr<NSDictionary> added, found, foundAgain;
  ASSERT_EQ(SecItemAdd(dictionary, &added), errSecSuccess);
  ASSERT_EQ(SecItemCopyMatching(dictionary, &found), errSecSuccess);
  EXPECT_EQ(SecItemUpdate(dictionary, dictionary), errSecSuccess);
  EXPECT_EQ(shown(dictionary), before);
  EXPECT_EQ(shown(added), "class=generic password account=ann");
  NSDynamicCast<NSMutableDictionary>(found)->removeAllObjects();
  dictionary->setObject(dataOf("other"), kSecValueData);
  ASSERT_EQ(SecItemCopyMatching(dictionary, &foundAgain), errSecSuccess);
  EXPECT_EQ(shown(foundAgain), "class=generic password account=ann valueData=secret");
  EXPECT_TRUE(NSDynamicCast<NSData>(foundAgain->objectForKey(kSecValueData))->holdsSecret());
}

TEST_F(SecItemTest, StoreFailuresAreReturnedAndLeaveTheResultAlone) {
  const auto query = writtenMap("class=generic account=ann returnAttributes=1");
  const NSRefPtr<NSDictionary> untouched = NSDictionary::dictionary();
  NSRefPtr<NSDictionary> result = untouched;
  for (const OSStatus status : {errSecIO, errSecDiskFull, errSecBusy, errSecDecode, errSecAllocate}) {
    returnAlways(status);
    EXPECT_EQ(SecItemAdd(query, &result), status);
    EXPECT_EQ(SecItemCopyMatching(query, &result), status);
    EXPECT_EQ(SecItemUpdate(query, query), status);
    EXPECT_EQ(SecItemDelete(query), status);
    EXPECT_EQ(result.get(), untouched.get());
  }
}

TEST_F(SecItemTest, AStoreIsChosenByItsKindAndNeverByAnError) {
#ifdef VX_HAS_DESKTOP_STORE
  constexpr OSStatus withoutDesktop = errSecNoSessionBus;
#else
  constexpr OSStatus withoutDesktop = errSecNotBuiltIn;
#endif
  for (const char* variable : {"HOME", "XDG_DATA_HOME"}) unsetenv(variable);
  setenv("DBUS_SESSION_BUS_ADDRESS", "none", 1);
  for (const auto& [kind, status] :
       {std::pair<SecStorageKind, OSStatus>{SecStorageKind::file, errSecNotAvailable},
        {SecStorageKind::memory, errSecSuccess},
        {SecStorageKind::desktop, withoutDesktop}}) {
    secSetDefaultStorage(kind);
    for (const char* account : {"ann", "bob"})
      EXPECT_EQ(SecItemAdd(writtenMap(std::string("class=generic account=") + account)), status);
  }
}

TEST_F(SecItemTest, SecretsAreNotReadUnlessRequested) {
  const auto storage = std::make_shared<CountingStorage>();
  secSetDefaultStorage(storage);
  const auto secretsReadBy = [&](OSStatus status) {
    EXPECT_TRUE(status == errSecSuccess || status == errSecDuplicateItem) << status;
    return std::exchange(storage->secretsRead, 0);
  };
  const auto all = writtenMap("class=generic");
  for (const char* account : {"ann", "bob", "cat"}) {
    const auto entry = writtenMap(std::string("class=generic valueData=secret account=") + account);
    EXPECT_EQ(secretsReadBy(SecItemAdd(entry)), 0);
    EXPECT_EQ(secretsReadBy(SecItemAdd(entry)), 0);
  }
  EXPECT_EQ(secretsReadBy(SecItemCopyMatching(writtenMap("class=generic matchLimit=all returnAttributes=1"))),
            0);
  EXPECT_EQ(secretsReadBy(SecItemCopyMatching(writtenMap("class=generic matchLimit=2 returnData=1"))), 2);
  EXPECT_EQ(secretsReadBy(SecItemCopyMatching(writtenMap("class=generic returnData=1"))), 1);
  EXPECT_EQ(secretsReadBy(SecItemUpdate(all, writtenMap("label=L"))), 0);
  EXPECT_EQ(secretsReadBy(SecItemUpdate(all, writtenMap("class=generic valueData=new account=ann"))), 0);
  EXPECT_TRUE(VXGenericKeychainItem::findAllKeychainItemsForUsername(nullptr, nullptr));
  EXPECT_EQ(secretsReadBy(SecItemDelete(all)), 0);
}
