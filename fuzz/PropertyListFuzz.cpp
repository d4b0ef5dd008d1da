#include <Foundation/Foundation.h>
#include <Foundation/NSPropertyList.h>

#include "tests/support/Fuzz.h"

// Property lists: any bytes give absent or an object, the same one every time, that can be described,
// compared and let go of.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = FuzzInput(data, size).rest();
  const NSRefPtr<NSObject> object = NSPropertyListWithData(fuzzBytes(text));
  const NSRefPtr<NSObject> again = NSPropertyListWithData(fuzzBytes(text));
  fuzzRequire(!object == !again, "a property list is one every time");
  if (!object) return 0;
  fuzzRequire(object->isEqual(again) && object->hash() == again->hash(), "a property list is read alike");
  object->description();
  const bool endsInSpace = std::string_view(" \t\r\n").find(text.back()) != std::string_view::npos;
  const auto cut = NSPropertyListWithData(fuzzBytes(text.substr(0, size - 1)));
  fuzzRequire(!cut || endsInSpace, "a cut property list is none");
  return 0;
}
