// Many processes and threads that use one store.
#include <sys/wait.h>

#include <csignal>
#include <vector>

#include "Faults.h"
#include "tests/support/Threads.h"

namespace {

constexpr std::size_t members = 8;

OSStatus countUp(Passwords& passwords, const std::string& what) {
  const auto replace = [&](SecTransaction& store, const SecRow& row) {
    const std::string next = std::to_string(std::stoul(textFrom(row.entry.secret)) + 1);
    store.replace(row.number, Passwords::named(what), secretFrom(next));
  };
  return passwords.changeFound(what, replace, SecSecrets::read);
}

/// Changes shared entries and its own in turn, and counts the changes and the shared names that it added
/// first; returns false if a change is refused or not visible.
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

/// A store that several processes or threads use at once.
struct SharedStore : TemporaryPlace {
  SharedStore() {
    EXPECT_EQ(passwords.open(place), errSecSuccess);
    for (const char* sum : {"changes", "winners"}) EXPECT_EQ(passwords.add(sum, "0"), errSecSuccess);
  }
  void judge(std::size_t changes) {
    const Held held = readAll(*this);
    EXPECT_EQ(held.at("changes"), std::to_string(members * changes));
    EXPECT_EQ(held.at("winners"), std::to_string(changes)) << "a name without exactly one winner";
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
  onThreads(members, [&](std::size_t member) {
    // Every second one has its own connection, so that both kinds of waiting occur.
    Passwords own;
    EXPECT_TRUE(takePart(store, member % 2 ? own : store.passwords, member, changes));
  });
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
    return namesIn("/proc/self/fd") > inherited ? 0 : 2;  // has its own connection
  });
  EXPECT_TRUE(addSome("parent "));
  EXPECT_EQ(waitFor(child), 0);
  EXPECT_EQ(readAll(store).size(), 42u);
  count("forks");
}

TEST_F(SecFileFaults, StoppedHolder) {
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
  EXPECT_EQ(passwords.look("changes", found), errSecSuccess) << "a reader had to wait";
  EXPECT_EQ(found, "0");
  passwords.storage->setWaitLimit(std::chrono::milliseconds(0));
  const auto asked = std::chrono::steady_clock::now();
  EXPECT_EQ(passwords.add("bob", "3"), errSecBusy);
  EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(4)) << "the limit is ignored";
  ::kill(holder, SIGCONT);
  EXPECT_EQ(waitFor(holder), 0) << "the holder could not continue";
  EXPECT_EQ(passwords.add("bob", "3"), errSecSuccess) << "still busy";
  EXPECT_EQ(readAll(store).size(), 4u) << "an entry is lost";
  count("stopped");
}
