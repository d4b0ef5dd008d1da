#include <Foundation/NSString.h>

#include <QString>
#include <string_view>

#include "Contest.h"

// Strings from UTF-8 and back, in languages whose characters take one to four bytes.
namespace {

using namespace Contest;

struct Sample {
  const char* name;
  std::string_view sentence;
};

constexpr Sample samples[] = {
    {"German",
     "Wer eine Frage, einen Namen oder einen Preis über ein Formular schickt, schickt Wörter, Leerzeichen "
     "und "
     "größere oder kleinere Zeichen. "},
    {"Greek", "Όποιος στέλνει μια ερώτηση, ένα όνομα ή μια τιμή, στέλνει λέξεις, κενά και μερικά σημεία. "},
    {"Japanese", "質問や名前や値段を書式で送る人は、言葉と空白と、いくつかの記号を送っています。"},
    {"emoji", "😀🎉🚀🌍🐢🍎🎵🏡🔑📦🧭🦉🌈⚡🛶🪁"},
    {"mixed",
     "A price of 20 € für größere Mengen, στη διεύθυνση του πελάτη, 住所は東京都です 🚀 and then plain "
     "words. "},
};

/// Returns whole characters of the repeated sentence, and full stops up to `size` bytes.
std::string textOf(std::string_view sentence, std::size_t size) {
  std::string text;
  while (text.size() <= size) text += sentence;
  std::size_t end = size;
  while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  text.resize(size, '.');
  return text;
}

void registerSample(const Sample& sample) {
  const std::string in = std::string("string from UTF-8, ") + sample.name;
  const std::string out = std::string("string to UTF-8, ") + sample.name;
  const auto make = [sentence = sample.sentence](std::size_t size) { return textOf(sentence, size); };
  ours(in, [make](std::size_t size) {
    return Trial{size, [text = make(size)] { return NSString::stringWithUTF8String(text); }};
  });
  contestant(in, "Qt 5", Checks::all, make, [](const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
  });
  ours(out, [make](std::size_t size) {
    return Trial{size,
                 [string = NSString::stringWithUTF8String(make(size))] { return string->UTF8String(); }};
  });
  contestant(out, "Qt 5", Checks::all, [make](std::size_t size) {
    return Trial{size, [string = QString::fromStdString(make(size))] { return string.toUtf8(); }};
  });
}

}  // namespace

void registerUnicode() {
  for (const Sample& sample : samples) registerSample(sample);
}
