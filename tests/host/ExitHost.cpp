// A host that loads the library late, through a plugin, and uses it until the very end: from its own static
// and thread-local objects, from exit handlers, and from a thread that does not stop.
//
//   ExitHost PLUGIN LIBRARY
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

void (*use)() = nullptr;

struct User {
  ~User() {
    if (use) use();
  }
};

// Constructed before the library, and so destroyed after everything that it registers.
const User ofProcess;
thread_local const User ofThread;

void touch(const void*) {}

void (*functionOf(void* plugin, const char* name))() {
  return reinterpret_cast<void (*)()>(dlsym(plugin, name));
}

}  // namespace

int main(int, char** arguments) {
  touch(&ofThread);
  std::atexit([] { use(); });
  dlclose(dlopen(arguments[2], RTLD_NOW));
  if (!dlopen(arguments[2], RTLD_NOW | RTLD_NOLOAD)) return 2;  // it must not be unloaded
  void* const plugin = dlopen(arguments[1], RTLD_NOW);
  if (!plugin) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  functionOf(plugin, "start")();
  use = functionOf(plugin, "use");
  use();
  std::atexit(use);
  std::thread([] {
    touch(&ofThread);
    use();
  }).join();
  std::thread([] {
    for (;;) use();
  }).detach();
  return 0;
}
