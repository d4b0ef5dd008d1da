#include "Faults.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

namespace {

std::map<std::string, std::size_t> figures;

OSStatus protect(Passwords& passwords, const char* passphrase) {
  return passwords.storage->setPassphrase(secretFrom(passphrase).bytes());
}

OSStatus leave(const TemporaryPlace&, Passwords&) { return errSecSuccess; }
OSStatus protectFirst(const TemporaryPlace&, Passwords& passwords) { return protect(passwords, "one"); }

/// Puts a store of the first format in place of the one that there is.
OSStatus putFormer(const TemporaryPlace& temporary, Passwords& passwords) {
  passwords.storage.reset();
  const std::filesystem::path kept = VX_TESTS "/vectors/format-1", keys = temporary.place.keyFolder;
  const auto options =
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing;
  std::filesystem::remove_all(keys);
  std::filesystem::copy(kept / "forty.store", temporary.place.store, options);
  std::filesystem::copy(kept / "forty.keys", keys, options);
  for (const auto& item : std::filesystem::recursive_directory_iterator(temporary.root))
    std::filesystem::permissions(item, std::filesystem::perms(item.is_directory() ? 0700 : 0600));
  std::filesystem::permissions(keys, std::filesystem::perms(0700));
  return passwords.open(temporary.place);
}

}  // namespace

const std::vector<Rekeying> rekeyings = {
    {"set a passphrase", leave, [](Passwords& passwords) { return protect(passwords, "one"); }},
    {"change the passphrase", protectFirst, [](Passwords& passwords) { return protect(passwords, "two"); }},
    {"remove the passphrase", protectFirst,
     [](Passwords& passwords) { return passwords.storage->removePassphrase(); }},
    {"rotate", leave, [](Passwords& passwords) { return passwords.storage->rotate(); }},
    {"rotate under a passphrase", protectFirst,
     [](Passwords& passwords) { return passwords.storage->rotate(); }},
    {"migrate", putFormer, [](Passwords& passwords) { return passwords.update("account 7", "x"); }},
    {"migrate and set a passphrase", putFormer,
     [](Passwords& passwords) { return protect(passwords, "one"); }},
};

SecFileFaults::SecFileFaults() {
  // Without these there is no default place, so that no fault can reach the user's own store.
  for (const char* variable : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) ::unsetenv(variable);
  figures.clear();
}

SecFileFaults::~SecFileFaults() {
  EXPECT_FALSE(figures.empty()) << "nothing was tried";
  for (const auto& [what, number] : figures) std::printf("%s %zu\n", what.c_str(), number);
}

std::size_t SecFileFaults::inForm(std::size_t shortForm, std::size_t longForm) {
  const char* const form = ::getenv("VX_FAULTS");
  return form && std::string(form) == "long" ? longForm : shortForm;
}

void count(const std::string& what, std::size_t number) { figures[what] += number; }

OSStatus openAny(const TemporaryPlace& temporary, Passwords& passwords) {
  SecFileInfo info;
  OSStatus status = passwords.open(temporary.place, Passwords::refuse);
  if (status == errSecSuccess) status = passwords.storage->info(info);
  for (const char* passphrase : {"one", "two"})
    if (status == errSecSuccess && info.locked &&
        passwords.storage->unlock(secretFrom(passphrase).bytes()) == 0)
      break;
  return status;
}

Held readAll(const TemporaryPlace& temporary) {
  Passwords passwords;
  Held held;
  const OSStatus opened = openAny(temporary, passwords);
  EXPECT_EQ(opened, errSecSuccess) << "the store cannot be opened";
  if (opened != errSecSuccess) return held;
  EXPECT_EQ(passwords.storage->verify(), errSecSuccess) << "the store does not verify";
  EXPECT_EQ(passwords.all(held), errSecSuccess) << "the store cannot be read";
  return held;
}

pid_t inChild(const std::function<int()>& body) {
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::_exit(body());
}

bool hasOwnMounts() {
  const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
  return ::unshare(spaces) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

int waitFor(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}
