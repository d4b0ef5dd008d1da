// Writers that are killed at any time, or before any call that touches the disk.
#include <sys/socket.h>

#include <csignal>
#include <random>
#include <set>
#include <vector>

#include "Calls.h"
#include "Faults.h"

namespace {

enum Operation : unsigned { adding, updating, removing };

/// A change that a writer is about to make or has made.
struct Change {
  unsigned done;
  Operation operation;
  unsigned account;
  unsigned value;

  std::string name() const { return "account " + std::to_string(account); }
  /// Returns one with a length up to several pages of the file.
  std::string password() const {
    return std::string(value % 7 == 0 ? value % 9000 : value % 90, 'x') + std::to_string(value);
  }
};

constexpr unsigned accountsEach = 40;
constexpr int diskCalls = Calls::writing | Calls::syncing | Calls::opening | Calls::naming;

OSStatus perform(Passwords& passwords, const Change& change) {
  if (change.operation == adding) return passwords.add(change.name(), change.password());
  if (change.operation == updating) return passwords.update(change.name(), change.password());
  return passwords.remove(change.name());
}

void record(Held& held, const Change& change) {
  if (change.operation == removing)
    held.erase(change.name());
  else
    held[change.name()] = change.password();
}

/// Changes its own accounts until it is killed, and reports each change before and after.
int write(const TemporaryPlace& temporary, unsigned writer, unsigned long seed, long killedAt, int to) {
  std::mt19937 random(static_cast<unsigned>(seed));
  Passwords passwords;
  if (passwords.open(temporary.place, Passwords::refuse) != errSecSuccess) return 1;
  if (killedAt > 0) Calls::arm(diskCalls, killedAt, Calls::Fate::kill);
  for (;;) {
    Change change{};
    change.operation = Operation(random() % 3);
    change.account = writer * accountsEach + static_cast<unsigned>(random() % accountsEach);
    change.value = static_cast<unsigned>(random());
    if (::send(to, &change, sizeof change, 0) < 0) return 2;
    const OSStatus status = perform(passwords, change);
    const bool expected = status == errSecDuplicateItem || status == errSecItemNotFound;
    if (status != errSecSuccess && !expected) return 3;
    change.done = expected ? 2 : 1;
    if (::send(to, &change, sizeof change, 0) < 0) return 2;
  }
}

/// Applies the changes that a writer reported as done to `held`; returns the one that it had only begun.
std::optional<Change> listen(int from, Held& held) {
  std::optional<Change> begun;
  for (Change change; ::recv(from, &change, sizeof change, 0) == sizeof change;) {
    begun.reset();
    if (change.done == 0) begun = change;
    if (change.done == 1) record(held, change);
    count("acknowledged", change.done == 1);
  }
  return begun;
}

struct Writer {
  pid_t process;
  int from;
};

Writer start(const TemporaryPlace& temporary, unsigned number, unsigned long seed, long killedAt) {
  int ends[2];
  ::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends);
  const pid_t process = inChild([&] {
    ::close(ends[0]);
    return write(temporary, number, seed, killedAt, ends[1]);
  });
  ::close(ends[1]);
  return {process, ends[0]};
}

/// Expects all acknowledged changes, and all or nothing of a change that was only begun.
void compare(const Held& found, Held& held, const std::vector<std::optional<Change>>& begun) {
  for (const auto& change : begun) {
    if (!change) continue;
    const auto kept = found.find(change->name());
    const bool isDone = change->operation == removing
                            ? kept == found.end()
                            : kept != found.end() && kept->second == change->password();
    if (isDone) record(held, *change);
  }
  EXPECT_TRUE(found == held) << "an acknowledged change is lost or another is half done";
}

}  // namespace

TEST_F(SecFileFaults, Kills) {
  const std::size_t rounds = inForm(60, 1000);
  const TemporaryPlace temporary;
  std::mt19937 random(1);
  Held held;
  Passwords().open(temporary.place);
  for (std::size_t round = 0; round < rounds; ++round) {
    SCOPED_TRACE(round);
    std::vector<Writer> writers;
    std::vector<std::optional<Change>> begun;
    for (unsigned number = 0; number < 2; ++number)
      writers.push_back(
          start(temporary, number, random(), round % 2 ? 1 + static_cast<long>(random() % 300) : 0));
    ::usleep(static_cast<useconds_t>(random() % 20000));
    for (const Writer& writer : writers)
      if (round % 2 == 0) ::kill(writer.process, SIGKILL);
    for (const Writer& writer : writers) {
      begun.push_back(listen(writer.from, held));
      ::close(writer.from);
      EXPECT_EQ(waitFor(writer.process), -SIGKILL) << "a writer ended by itself";
      count("killed");
    }
    compare(readAll(temporary), held, begun);
  }
}

TEST_F(SecFileFaults, Creations) {
  const std::size_t rounds = inForm(20, 200);
  std::mt19937 random(2);
  for (std::size_t round = 0; round < rounds; ++round) {
    SCOPED_TRACE(round);
    const TemporaryPlace temporary;
    std::vector<pid_t> makers;
    for (int number = 0; number < 8; ++number) {
      const long killedAt = number < 4 ? 1 + static_cast<long>(random() % 30) : 0;
      makers.push_back(inChild([&] {
        Passwords passwords;
        if (killedAt > 0) Calls::arm(diskCalls, killedAt, Calls::Fate::kill);
        if (passwords.open(temporary.place) != errSecSuccess) return 1;
        return passwords.add("account " + std::to_string(number), "x") == errSecSuccess ? 0 : 2;
      }));
    }
    std::set<std::string> acknowledged;
    for (std::size_t number = 0; number < makers.size(); ++number) {
      const int result = waitFor(makers[number]);
      EXPECT_TRUE(result == 0 || result == -SIGKILL) << "a maker failed with " << result;
      if (result == 0) acknowledged.insert("account " + std::to_string(number));
      count(result == 0 ? "made or joined" : "killed");
    }
    const Held found = readAll(temporary);
    for (const std::string& account : acknowledged) EXPECT_EQ(found.count(account), 1u) << "lost " << account;
    for (const auto& item : std::filesystem::directory_iterator(temporary.root / "data"))
      EXPECT_EQ(item.path().string().find(temporary.place.store), 0u) << "left over: " << item;
  }
}

TEST_F(SecFileFaults, Rekeyings) {
  for (const Rekeying& rekeying : rekeyings) {
    int result = -SIGKILL;
    for (long nth = 1; result == -SIGKILL; ++nth) {
      SCOPED_TRACE(rekeying.name + std::string(", killed at call ") + std::to_string(nth));
      const TemporaryPlace temporary;
      Passwords passwords;
      ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
      for (const char* account : {"ann", "bob"}) passwords.add(account, std::string(3000, *account));
      ASSERT_EQ(rekeying.prepare(temporary, passwords), errSecSuccess);
      passwords.storage.reset();
      Held before = readAll(temporary);
      before["account 7"];
      result = waitFor(inChild([&] {
        if (openAny(temporary, passwords) != errSecSuccess) return 1;
        Calls::arm(diskCalls, nth, Calls::Fate::kill);
        return rekeying.act(passwords) == errSecSuccess ? 0 : 2;
      }));
      Held after = readAll(temporary);
      if (after["account 7"] == "x") before["account 7"] = "x";  // what the change was
      EXPECT_EQ(after, before);
      ASSERT_EQ(openAny(temporary, passwords), errSecSuccess);
      EXPECT_EQ(passwords.add("next", "x"), errSecSuccess);
      count("killed", result == -SIGKILL);
    }
    EXPECT_EQ(result, 0);
  }
}
