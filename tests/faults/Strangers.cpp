// Another user, in a folder that everybody may write to.
#include <fcntl.h>
#include <sys/wait.h>

#include <csignal>

#include "Faults.h"

namespace {

constexpr uid_t stranger = 65534;

/// Puts journals next to the store, which state that the store was empty, and takes them away again.
[[noreturn]] void plant(const std::string& journal) {
  std::string content("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7\0\0\0\0ABCD\0\0\0\0\0\0\2\0\0\0\x10\0", 28);
  content.resize(512);
  for (bool counts = false;; counts = !counts) {
    content.replace(8, 4, 4, counts ? '\xff' : '\0');
    const int file = ::open(journal.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0666);
    if (file >= 0 && ::write(file, content.data(), content.size()) < 0) ::_exit(1);
    ::close(file);
    ::unlink(journal.c_str());
  }
}

}  // namespace

TEST_F(SecFileFaults, Strangers) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be two users";
  const std::size_t rounds = inForm(1000, 20000);
  TemporaryPlace temporary;
  temporary.place.allowSharedFolder = true;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  ASSERT_EQ(passwords.add("ann", "1"), errSecSuccess);
  temporary.place.ownsFolder = false;
  const std::filesystem::path folder = temporary.root / "data";
  std::filesystem::permissions(temporary.root, std::filesystem::perms(0711));
  std::filesystem::permissions(folder, std::filesystem::perms(01777));
  const std::string before = readFile(temporary.place.store);
  const pid_t other = inChild([&]() -> int {
    if (::setuid(stranger) != 0) return 2;
    plant(temporary.place.store + "-journal");
  });
  for (std::size_t round = 0; round < rounds; ++round) {
    Passwords::Found found;
    OSStatus status = passwords.open(temporary.place, Passwords::refuse);
    if (status == errSecSuccess) status = passwords.look("ann", found);
    EXPECT_TRUE(status == errSecNotPrivate || (status == errSecSuccess && found == "1")) << status;
    count(status == errSecSuccess ? "found" : "refused");
  }
  ::kill(other, SIGKILL);
  EXPECT_EQ(waitFor(other), -SIGKILL);
  std::filesystem::remove(temporary.place.store + "-journal");
  EXPECT_EQ(readFile(temporary.place.store), before);
  EXPECT_EQ(passwords.open(temporary.place), errSecSuccess);
  EXPECT_EQ(passwords.add("bob", "2"), errSecSuccess);
}
