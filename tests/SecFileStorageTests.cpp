#include <gtest/gtest.h>

#include "SecFileTests.h"
#include "SecStorageConformance.h"

TEST(SecFileStorage, Conforms) {
  std::vector<std::unique_ptr<TemporaryPlace>> places;
  SecStorageConformance::expect([&]() -> std::shared_ptr<SecStorage> {
    places.push_back(std::make_unique<TemporaryPlace>());
    std::unique_ptr<SecFileStorage> storage;
    EXPECT_EQ(SecFileStorage::open(places.back()->place, Passwords::make, storage), errSecSuccess);
    return storage;
  });
}

TEST(SecFileStorage, X) {
  TemporaryPlace t;
  Passwords p;
  ASSERT_EQ(p.open(t.place), 0);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(p.add("a" + std::to_string(i), "secret"), 0);
  std::optional<std::string> f;
  auto s = std::chrono::steady_clock::now();
  for (int i = 0; i < 1000; ++i) { ASSERT_EQ(p.look("a" + std::to_string(i), f), 0); ASSERT_EQ(f, "secret"); }
  auto e = std::chrono::steady_clock::now();
  printf("look %f us\n", std::chrono::duration<double>(e - s).count() * 1e3);
  s = std::chrono::steady_clock::now();
  for (int i = 0; i < 100; ++i) { Passwords q; ASSERT_EQ(q.open(t.place), 0); ASSERT_EQ(q.look("a" + std::to_string(i), f), 0); ASSERT_EQ(f, "secret"); }
  e = std::chrono::steady_clock::now();
  printf("open+look %f us\n", std::chrono::duration<double>(e - s).count() * 1e4);
  s = std::chrono::steady_clock::now();
  ASSERT_EQ(p.storage->verify(), 0);
  e = std::chrono::steady_clock::now();
  printf("verify %f us\n", std::chrono::duration<double>(e - s).count() * 1e6);
  ASSERT_EQ(p.storage->setPassphrase(secretFrom("abc").bytes()), 0);
  Passwords q; ASSERT_EQ(q.open(t.place), 0); EXPECT_EQ(q.look("a", f), errSecInteractionNotAllowed);
  EXPECT_EQ(q.storage->unlock(secretFrom("abd").bytes()), errSecAuthFailed);
  EXPECT_EQ(q.storage->unlock(secretFrom("abc").bytes()), 0);
  EXPECT_EQ(q.storage->removePassphrase(), 0);
  SecStorageInfo i; ASSERT_EQ(q.storage->copyInfo(i), 0); printf("%s %s %zu\n", i.place.c_str(), i.protection.c_str(), i.entries);
  EXPECT_EQ(q.remove("a5"), 0); EXPECT_EQ(q.update("a6","x"), 0); EXPECT_EQ(q.update("a5","x"), errSecItemNotFound);
  ASSERT_EQ(q.storage->verify(), 0);
}
