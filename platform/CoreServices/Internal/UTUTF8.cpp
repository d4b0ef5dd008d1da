#include <CoreServices/Internal/UTUTF8.h>

#include <type_traits>

UTUTF8::UTUTF8(const NSString& string) {
  if (string.isASCII()) {
    string.visit([this](auto units) {
      if constexpr (std::is_same_v<decltype(units), std::string_view>) view_ = units;
    });
  } else if (auto utf8 = string.UTF8String()) {
    view_ = copy_ = *std::move(utf8);
  }
}
