// Stores where the system mounts less than usual.
#include <sys/mount.h>

#include <csignal>

#include "Calls.h"
#include "Faults.h"

namespace {

bool mountReadOnly(const TemporaryPlace& temporary) {
  const char* const folder = temporary.root.c_str();
  return ::mount(folder, folder, nullptr, MS_BIND, nullptr) == 0 &&
         ::mount("none", folder, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

/// Leaves a journal that has to be played back.
int interruptAChange(const TemporaryPlace& temporary) {
  Passwords passwords;
  if (passwords.open(temporary.place) != errSecSuccess) return 1;
  Calls::arm(Calls::naming, 1, Calls::Fate::kill);
  passwords.update("ann", "new");
  return 2;
}

int useReadOnly(bool interrupted) {
  const TemporaryPlace temporary;
  Passwords passwords;
  if (passwords.open(temporary.place) != errSecSuccess || passwords.add("ann", "old") != errSecSuccess)
    return 1;
  passwords.storage.reset();
  if (interrupted && waitFor(inChild([&] { return interruptAChange(temporary); })) != -SIGKILL) return 2;
  if (!hasOwnMounts() || !mountReadOnly(temporary)) return notAllowed;
  const OSStatus opened = passwords.open(temporary.place);
  Held held;
  int result = 0;
  if (interrupted)
    result = opened == errSecIO ? 0 : 3;
  else if (opened != errSecSuccess || passwords.all(held) != errSecSuccess || held["ann"] != "old")
    result = 4;
  else if (passwords.update("ann", "new") != errSecReadOnly)
    result = 5;
  passwords.storage.reset();
  ::umount2(temporary.root.c_str(), MNT_DETACH);
  return result;
}

int makeWithoutProc() {
  const TemporaryPlace temporary;
  if (!hasOwnMounts() || ::mount("none", "/proc", "tmpfs", 0, "size=64k") != 0) return notAllowed;
  Passwords passwords;
  if (passwords.open(temporary.place) != errSecSuccess) return 1;
  if (passwords.add("ann", "x") != errSecSuccess) return 2;
  return namesIn(temporary.root / "data") == 1 ? 0 : 3;
}

void expectDone(const std::string& what, const std::function<int()>& body) {
  const int result = waitFor(inChild(body));
  EXPECT_TRUE(result == 0 || result == notAllowed) << what << ": step " << result;
  count(what + (result == notAllowed ? " not allowed here" : ""));
}

}  // namespace

TEST_F(SecFileFaults, Mounts) {
  expectDone("read-only", [] { return useReadOnly(false); });
  expectDone("read-only with a journal", [] { return useReadOnly(true); });
  expectDone("without /proc", makeWithoutProc);
}
