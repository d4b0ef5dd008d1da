#include <Foundation/NSPropertyList.h>
#include <Foundation/NSString.h>

#include "tests/support/Fuzz.h"

// Property lists: any bytes give nil or an object, equal every time, that can be described, compared and
// released.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = FuzzInput(data, size).rest();
  const NSRefPtr<NSObject> object = NSPropertyListWithData(fuzzBytes(text));
  const NSRefPtr<NSObject> again = NSPropertyListWithData(fuzzBytes(text));
  fuzzRequire(!object == !again, "the same bytes are a property list every time");
  if (!object) return 0;
  fuzzRequire(object->isEqual(again) && object->hash() == again->hash(), "equal bytes give equal objects");
  object->description();
  const bool endsInSpace = std::string_view(" \t\r\n").find(text.back()) != std::string_view::npos;
  const auto cut = NSPropertyListWithData(fuzzBytes(text.substr(0, size - 1)));
  fuzzRequire(!cut || endsInSpace, "a truncated property list is nil");
  return 0;
}
