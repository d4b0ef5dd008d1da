#include "Faults.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

namespace {

std::map<std::string, std::size_t> figures;

}  // namespace

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

Held readAll(const TemporaryPlace& temporary) {
  Passwords passwords;
  Held held;
  const OSStatus opened = passwords.open(temporary.place, Passwords::refuse);
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
