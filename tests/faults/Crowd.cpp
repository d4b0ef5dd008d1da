// Many processes and threads at one store.
#include <sys/wait.h>

#include <csignal>
#include <thread>
#include <vector>

#include "Faults.h"

namespace {

constexpr std::size_t members = 8;

OSStatus countUp(Passwords& passwords) {
  return passwords.storage->transact(SecStorage::Access::change, [](SecTransaction& store) -> OSStatus {
    std::optional<SecRow> row;
    const OSStatus status = store.find(Passwords::named("sum"), [&](SecRow found) {
      row = std::move(found);
      return false;
    });
    if (status != errSecSuccess) return status;
    const std::string next = std::to_string(std::stoul(textFrom(row->entry.secret)) + 1);
    return store.replace(row->number, Passwords::entryOf("sum", next));
  });
}

/// Changes shared and own entries in turn; how many of the shared names it was the first to add, or -1.
int takePart(Passwords& passwords, std::size_t member, std::size_t changes) {
  int won = 0;
  for (std::size_t change = 0; change < changes; ++change) {
    const std::string own = "own " + std::to_string(member) + " " + std::to_string(change % 20);
    if (countUp(passwords) != errSecSuccess) return -1;
    const OSStatus shared = passwords.add("shared " + std::to_string(change), std::to_string(member));
    if (shared != errSecSuccess && shared != errSecDuplicateItem) return -1;
    won += shared == errSecSuccess;
    Passwords::Found found;
    const OSStatus status = change % 40 < 20 ? passwords.add(own, "x") : passwords.remove(own);
    if (status != errSecSuccess || passwords.look(own, found) != errSecSuccess) return -1;
    if (found.has_value() != (change % 40 < 20)) return -1;
  }
  return won;
}

void judge(const TemporaryPlace& temporary, const std::vector<int>& won, std::size_t changes) {
  const Held held = readAll(temporary);
  EXPECT_EQ(held.at("sum"), std::to_string(members * changes));
  std::size_t winners = 0;
  for (const int each : won) {
    EXPECT_GE(each, 0) << "a change was refused or not seen";
    winners += static_cast<std::size_t>(each);
  }
  EXPECT_EQ(winners, changes) << "not one winner for each name";
  count("changes", members * changes * 3);
}

}  // namespace

TEST_F(SecFileFaults, Processes) {
  const std::size_t changes = inForm(60, 1000);
  const TemporaryPlace temporary;
  Passwords first;
  first.open(temporary.place);
  first.add("sum", "0");
  std::vector<int> pipes, won;
  std::vector<pid_t> children;
  for (std::size_t member = 0; member < members; ++member) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    children.push_back(inChild([&] {
      Passwords passwords;
      const int result =
          passwords.open(temporary.place) == errSecSuccess ? takePart(passwords, member, changes) : -1;
      return ::write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1;
    }));
    ::close(ends[1]);
    pipes.push_back(ends[0]);
  }
  for (std::size_t member = 0; member < members; ++member) {
    won.push_back(-1);
    EXPECT_EQ(::read(pipes[member], &won.back(), sizeof(int)), static_cast<ssize_t>(sizeof(int)));
    EXPECT_EQ(waitFor(children[member]), 0) << "a process failed";
    ::close(pipes[member]);
  }
  judge(temporary, won, changes);
}

TEST_F(SecFileFaults, Threads) {
  const std::size_t changes = inForm(60, 1000);
  const TemporaryPlace temporary;
  Passwords passwords;
  passwords.open(temporary.place);
  passwords.add("sum", "0");
  std::vector<int> won(members);
  std::vector<std::thread> crowd;
  for (std::size_t member = 0; member < members; ++member)
    crowd.emplace_back([&, member] {
      // Every second one has a connection of its own, so that both kinds of waiting are met.
      Passwords own;
      if (member % 2) own.open(temporary.place);
      won[member] = takePart(member % 2 ? own : passwords, member, changes);
    });
  for (std::thread& member : crowd) member.join();
  judge(temporary, won, changes);
}

TEST_F(SecFileFaults, StoppedHolder) {
  const std::size_t rounds = inForm(1, 3);
  for (std::size_t round = 0; round < rounds; ++round) {
    const TemporaryPlace temporary;
    Passwords passwords;
    passwords.open(temporary.place);
    passwords.add("ann", "1");
    const pid_t holder = inChild([&] {
      return passwords.storage->transact(SecStorage::Access::change, [](SecTransaction& store) {
        ::raise(SIGSTOP);
        return store.insert(Passwords::entryOf("held", "2"));
      });
    });
    int state = 0;
    ::waitpid(holder, &state, WUNTRACED);
    Passwords::Found found;
    EXPECT_TRUE(passwords.look("ann", found) == errSecSuccess && found == "1") << "a reader was kept waiting";
    EXPECT_EQ(passwords.add("bob", "3"), errSecBusy) << "not \"busy\"";
    ::kill(holder, SIGCONT);
    EXPECT_EQ(waitFor(holder), 0) << "the holder could not go on";
    EXPECT_EQ(passwords.add("bob", "3"), errSecSuccess) << "still busy";
    EXPECT_EQ(readAll(temporary).size(), 3u) << "something is lost";
    count("stopped");
  }
}
