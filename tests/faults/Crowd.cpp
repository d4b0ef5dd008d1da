// Many processes and threads at one store.
#include <sys/wait.h>

#include <csignal>
#include <thread>
#include <vector>

#include "Faults.h"

namespace {

constexpr std::size_t members = 8;

OSStatus countUp(Passwords& passwords, const std::string& what) {
  return passwords.storage->transact(SecStorage::Access::change, [&](SecTransaction& store) {
    std::optional<SecRow> row;
    store.find({Passwords::named(what)}, SecSecrets::read, [&](SecRow found) {
      row = std::move(found);
      return false;
    });
    const std::string next = std::to_string(std::stoul(textFrom(row->entry.secret)) + 1);
    store.replace(row->number, Passwords::named(what), secretFrom(next));
  });
}

/// Changes shared and own entries in turn, and counts them and the shared names that it was the first to
/// add; false once a change is refused or not seen.
bool takePart(const TemporaryPlace& temporary, Passwords& passwords, std::size_t member,
              std::size_t changes) {
  if (!passwords.storage && passwords.open(temporary.place) != errSecSuccess) return false;
  for (std::size_t change = 0; change < changes; ++change) {
    const std::string own = "own " + std::to_string(member) + " " + std::to_string(change % 20);
    if (countUp(passwords, "changes") != errSecSuccess) return false;
    const OSStatus shared = passwords.add("shared " + std::to_string(change), "x");
    if (shared != errSecDuplicateItem && shared != errSecSuccess) return false;
    if (shared == errSecSuccess && countUp(passwords, "winners") != errSecSuccess) return false;
    Passwords::Found found;
    const OSStatus status = change % 40 < 20 ? passwords.add(own, "x") : passwords.remove(own);
    if (status != errSecSuccess || passwords.look(own, found) != errSecSuccess) return false;
    if (found.has_value() != (change % 40 < 20)) return false;
  }
  return true;
}

/// A store that is used by many at once.
struct SharedStore : TemporaryPlace {
  SharedStore() {
    EXPECT_EQ(passwords.open(place), errSecSuccess);
    for (const char* sum : {"changes", "winners"}) EXPECT_EQ(passwords.add(sum, "0"), errSecSuccess);
  }
  void judge(std::size_t changes) {
    const Held held = readAll(*this);
    EXPECT_EQ(held.at("changes"), std::to_string(members * changes));
    EXPECT_EQ(held.at("winners"), std::to_string(changes)) << "not one winner for each name";
    count("changes", members * changes * 3);
  }
  Passwords passwords;
};

}  // namespace

TEST_F(SecFileFaults, Processes) {
  const std::size_t changes = inForm(60, 1000);
  SharedStore store;
  std::vector<pid_t> children;
  for (std::size_t member = 0; member < members; ++member) {
    children.push_back(inChild([&] {
      Passwords own;
      return takePart(store, own, member, changes) ? 0 : 1;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(waitFor(child), 0);
  store.judge(changes);
}

TEST_F(SecFileFaults, Threads) {
  const std::size_t changes = inForm(60, 1000);
  SharedStore store;
  std::vector<std::thread> crowd;
  for (std::size_t member = 0; member < members; ++member) {
    crowd.emplace_back([&, member] {
      // Every second one has a connection of its own, so that both kinds of waiting are met.
      Passwords own;
      EXPECT_TRUE(takePart(store, member % 2 ? own : store.passwords, member, changes));
    });
  }
  for (std::thread& member : crowd) member.join();
  store.judge(changes);
}

TEST_F(SecFileFaults, Fork) {
  SharedStore store;
  const auto addSome = [&](const std::string& whose) {
    for (int number = 0; number < 20; ++number)
      if (store.passwords.add(whose + std::to_string(number), "x") != errSecSuccess) return false;
    return true;
  };
  const pid_t child = inChild([&] {
    const std::size_t inherited = namesIn("/proc/self/fd");
    if (!addSome("child ")) return 1;
    return namesIn("/proc/self/fd") > inherited ? 0 : 2;  // on a connection of its own
  });
  EXPECT_TRUE(addSome("parent "));
  EXPECT_EQ(waitFor(child), 0);
  EXPECT_EQ(readAll(store).size(), 42u);
  count("forks");
}

TEST_F(SecFileFaults, StoppedHolder) {
  const std::size_t rounds = inForm(1, 3);
  for (std::size_t round = 0; round < rounds; ++round) {
    SharedStore store;
    Passwords& passwords = store.passwords;
    const pid_t holder = inChild([&] {
      return passwords.storage->transact(SecStorage::Access::change, [](SecTransaction& held) {
        ::raise(SIGSTOP);
        held.insert(Passwords::entryOf("held", "2"));
      });
    });
    ::waitpid(holder, nullptr, WUNTRACED);
    Passwords::Found found;
    EXPECT_EQ(passwords.look("changes", found), errSecSuccess) << "a reader was kept waiting";
    EXPECT_EQ(found, "0");
    passwords.storage->setWaitLimit(std::chrono::milliseconds(0));
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_EQ(passwords.add("bob", "3"), errSecBusy);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(4)) << "it waited all the same";
    ::kill(holder, SIGCONT);
    EXPECT_EQ(waitFor(holder), 0) << "the holder could not go on";
    EXPECT_EQ(passwords.add("bob", "3"), errSecSuccess) << "still busy";
    EXPECT_EQ(readAll(store).size(), 4u) << "something is lost";
    count("stopped");
  }
}
