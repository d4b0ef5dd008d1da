// For the thread sanitizer: two threads share an object correctly, but the library, which is not
// instrumented, releases it last. With an argument they also race for a variable of the program's own.
#include <Foundation/NSArray.h>

#include <chrono>
#include <thread>

namespace {
int unguarded = 0;
}

int main(int argc, char**) {
  const bool races = argc > 1;
  NSRefPtr<NSArray> array = NSArray::arrayWithObjects({NSString::stringWithFormat("%d", argc)});
  std::thread reader([shared = array, races]() mutable {
    const auto string = NSDynamicCast<NSString>(shared->objectAtIndex(0));
    shared = nullptr;
    std::this_thread::sleep_for(
        std::chrono::milliseconds(50));  // until only this thread and the array have it
    if (string->length() == 0 || races) ++unguarded;
  });
  std::thread releaser([shared = std::move(array), races]() mutable {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    if (races) ++unguarded;
    shared = nullptr;
  });
  reader.join();
  releaser.join();
}
