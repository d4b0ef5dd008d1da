// Writers that are killed before any call that touches the disk or the bus, while they add and remove ways to
// open a store. The desktop takes part if VX_DESKTOP says that the bus and its credential service are for
// tests.
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "Calls.h"
#include "Faults.h"

namespace {

constexpr int everyCall = Calls::writing | Calls::syncing | Calls::opening | Calls::naming;
const Held held = {{"ann", "1"}, {"bob", "2"}};

std::vector<SecFileSlotInfo> slotsOf(Passwords& passwords) {
  SecFileInfo info;
  EXPECT_EQ(passwords.storage->info(info), errSecSuccess);
  return info.keySlots;
}

/// Adds a slot, and removes the first one or, on the desktop, the new one.
int changeSlots(const TemporaryPlace& temporary, bool onDesktop, long killedAt) {
  Passwords passwords;
  if (passwords.open(temporary.place, Passwords::refuse) != errSecSuccess) return 1;
  Calls::arm(everyCall, killedAt, Calls::Fate::kill);
  const OSStatus added = onDesktop ? passwords.storage->addDesktop({}) : passwords.storage->addKeyFile();
  if (added != errSecSuccess) return 2;
  const auto slots = slotsOf(passwords);
  return passwords.storage->removeSlot((onDesktop ? slots.back() : slots.front()).name) == errSecSuccess ? 0
                                                                                                         : 3;
}

void expectOpen(const TemporaryPlace& temporary) {
  EXPECT_EQ(readAll(temporary), held);
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place, Passwords::refuse), errSecSuccess);
  if (slotsOf(passwords).back().protection != SecFileProtection::desktop) return;
  count("opened by the desktop");
  std::filesystem::rename(temporary.place.keyFolder, temporary.root / "away");
  EXPECT_EQ(readAll(temporary), held);
}

void killAtEveryCall(bool onDesktop) {
  int status = -SIGKILL;
  for (long call = 1; status == -SIGKILL; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    const TemporaryPlace temporary;
    Passwords passwords;
    ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
    for (const auto& [account, password] : held) ASSERT_EQ(passwords.add(account, password), errSecSuccess);
    passwords.storage.reset();
    status = waitFor(inChild([&] { return changeSlots(temporary, onDesktop, call); }));
    expectOpen(temporary);
    if (testing::Test::HasFailure()) return;
    count("kills", status == -SIGKILL);
  }
  EXPECT_EQ(status, 0);
}

}  // namespace

TEST_F(SecFileFaults, SomeSlotOpensAfterAKillAtAnyCall) { killAtEveryCall(false); }

TEST_F(SecFileFaults, SomeSlotOpensAfterAKillAtAnyCallToTheDesktop) {
  if (!std::getenv("VX_DESKTOP")) {  // what a developer's own service keeps is left alone
    count("skipped for want of a service for tests");
    GTEST_SKIP() << "there is no service for tests";
  }
  killAtEveryCall(true);
}

TEST_F(SecFileFaults, SlotsThatSeveralProcessesAddAreThere) {
  const TemporaryPlace temporary;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  passwords.storage.reset();
  std::vector<pid_t> children;
  for (int child = 0; child < 4; ++child)
    children.push_back(inChild([&] {
      Passwords own;
      if (own.open(temporary.place) != errSecSuccess) return 2;
      const OSStatus status = own.storage->addKeyFile();
      return status == errSecSuccess ? 0 : status == errSecBusy ? 1 : 3;
    }));
  std::size_t slots = 1;
  for (const pid_t child : children) {
    const int status = waitFor(child);
    EXPECT_LE(status, 1);
    slots += status == 0;
  }
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  EXPECT_EQ(slotsOf(passwords).size(), slots);
  EXPECT_EQ(passwords.storage->verify(), errSecSuccess);
  count("slots", slots);
}
