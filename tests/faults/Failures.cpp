// Calls that fail, one at a time, and full disks.
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <csignal>

#include "Calls.h"
#include "Faults.h"

namespace {

const Held atFirst = {{"ann", "1"}, {"bob", "2"}};

/// An operation on a store, and what the store holds after it.
struct Operation {
  const char* name;
  OSStatus (*act)(const TemporaryPlace& temporary, Passwords& passwords);
  Held after;
};

const Operation operations[] = {
    {"make", [](auto& temporary, auto& passwords) { return passwords.open(temporary.place); }, {}},
    {"open", [](auto& temporary, auto& passwords) { return passwords.open(temporary.place); }, atFirst},
    {"look up",
     [](auto&, auto& passwords) -> OSStatus {
       Passwords::Found found;
       const OSStatus status = passwords.look("ann", found);
       return status == errSecSuccess && found != "1" ? OSStatus{errSecItemNotFound} : status;
     },
     atFirst},
    {"add",
     [](auto&, auto& passwords) { return passwords.add("cy", std::string(9000, '3')); },
     {{"ann", "1"}, {"bob", "2"}, {"cy", std::string(9000, '3')}}},
    {"update",
     [](auto&, auto& passwords) { return passwords.update("ann", "4"); },
     {{"ann", "4"}, {"bob", "2"}}},
    {"remove", [](auto&, auto& passwords) { return passwords.remove("bob"); }, {{"ann", "1"}}},
    {"set a passphrase", [](auto&, auto& passwords) { return rekeyings[0].act(passwords); }, atFirst},
    {"rotate", [](auto&, auto& passwords) { return passwords.storage->rotate(); }, atFirst},
};

struct Kind {
  const char* name;
  int kinds;
  Calls::Fate fate;
  bool lasts;
};

constexpr Kind kinds[] = {
    {"read", Calls::reading, Calls::Fate::fail, false},
    {"write", Calls::writing, Calls::Fate::fail, false},
    {"write, disk full", Calls::writing, Calls::Fate::fill, true},
    {"sync", Calls::syncing, Calls::Fate::fail, false},
    {"open", Calls::opening, Calls::Fate::fail, false},
    {"link or unlink", Calls::naming, Calls::Fate::fail, false},
    {"memory", Calls::memory, Calls::Fate::fail, false},
    {"random bytes", Calls::randomness, Calls::Fate::fail, false},
};

OSStatus actWithFault(const Operation& operation, const Kind& kind, long nth, const TemporaryPlace& temporary,
                      Passwords& passwords, bool& met) {
  OSStatus status = errSecAllocate;
  Calls::arm(kind.kinds, nth, kind.fate, kind.lasts);
  try {
    status = operation.act(temporary, passwords);
  } catch (const std::bad_alloc&) {
    // from an allocation of this program itself
  }
  met = Calls::disarm();
  return status;
}

/// Returns false if there was no call left to fail.
bool tryOne(const Operation& operation, const Kind& kind, long nth) {
  const TemporaryPlace temporary;
  const bool making = std::string(operation.name) == "make";
  Passwords passwords;
  if (!making) {
    passwords.open(temporary.place);
    for (const auto& [account, password] : atFirst) passwords.add(account, password);
    if (std::string(operation.name) == "open") passwords.storage.reset();
  }
  const std::size_t filesBefore = namesIn("/proc/self/fd");
  bool met = false;
  const OSStatus status = actWithFault(operation, kind, nth, temporary, passwords, met);
  // After a failed sync the state of the disk is unknown: the change may have been kept, but only as a whole.
  const bool unsure = kind.kinds == Calls::syncing;
  if (passwords.storage) {
    if (unsure) static_cast<void>(passwords.storage->unlock(secretFrom("one").bytes()));
    EXPECT_EQ(passwords.add("next", "5"), errSecSuccess) << "the store cannot be used again";
  }
  if (status != errSecSuccess && !making && passwords.storage) {
    EXPECT_LE(namesIn("/proc/self/fd"), filesBefore) << "a file was left open";
  }
  EXPECT_EQ(passwords.open(temporary.place), errSecSuccess) << "the store cannot be opened again";
  Held found = readAll(temporary);
  found.erase("next");
  const Held& before = making ? operation.after : atFirst;
  EXPECT_TRUE(found == operation.after || (status != errSecSuccess && found == before))
      << "neither old nor new";
  EXPECT_TRUE(status == errSecSuccess || unsure || found == before) << "changed, but " << status;
  EXPECT_FALSE(met && unsure && making && status == errSecSuccess) << "not on the disk";
  // After the change there may still be no room for the note of it.
  EXPECT_TRUE(!met || !kind.lasts || status == errSecDiskFull || status == errSecSuccess)
      << "not full, but " << status;
  count(status == errSecSuccess ? "done nevertheless" : "failed with a status", met);
  return met;
}

/// Adds entries until the disk is full, then does what must still work; returns the step that failed, or 0.
int fill(const TemporaryPlace& temporary) {
  Passwords passwords;
  if (passwords.open(temporary.place) != errSecSuccess) return 1;
  const auto name = [](int number) { return "account " + std::to_string(number); };
  OSStatus status = errSecSuccess;
  int count = 0;
  while ((status = passwords.add(name(count), std::string(700, 'x'))) == errSecSuccess) ++count;
  if (status != errSecDiskFull || count < 20) return 2;
  Held held;
  if (passwords.all(held) != errSecSuccess || held.size() != static_cast<std::size_t>(count)) return 3;
  for (int number = 0; number < count; ++number)
    if (passwords.remove(name(number)) != errSecSuccess) return 4;
  if (passwords.add("room again", "x") != errSecSuccess) return 5;
  return passwords.storage->verify() == errSecSuccess ? 0 : 6;
}

int fillWithinLimit() {
  const TemporaryPlace temporary;
  const rlimit limit{300000, 300000};
  ::signal(SIGXFSZ, SIG_IGN);
  return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? fill(temporary) : 7;
}

/// Fills a small file system, which is unmounted with the process.
int fillSmallDisk() {
  const TemporaryPlace temporary;
  if (!hasOwnMounts() || ::mount("none", temporary.root.c_str(), "tmpfs", 0, "size=1m,mode=0700") != 0)
    return notAllowed;
  const int result = fill(temporary);
  ::umount2(temporary.root.c_str(), MNT_DETACH);
  return result;
}

}  // namespace

TEST_F(SecFileFaults, Failures) {
  const std::size_t step = inForm(23, 1);
  for (const Operation& operation : operations) {
    for (const Kind& kind : kinds) {
      const std::size_t pace = kind.kinds == Calls::memory ? step : 1;
      for (std::size_t nth = 1;; nth += pace) {
        SCOPED_TRACE(std::string(operation.name) + ", failing " + kind.name + " " + std::to_string(nth));
        if (!tryOne(operation, kind, static_cast<long>(nth))) break;
      }
    }
  }
}

TEST_F(SecFileFaults, FullDisk) {
  const int limited = waitFor(inChild(fillWithinLimit));
  EXPECT_EQ(limited, 0) << "the step that failed with a limit on file size";
  const int small = waitFor(inChild(fillSmallDisk));
  EXPECT_TRUE(small == 0 || small == notAllowed) << "on a small disk: step " << small;
  count("size limit");
  count(small == notAllowed ? "small disk not allowed here" : "small disk");
}
