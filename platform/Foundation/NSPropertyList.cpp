#include <Foundation/NSPropertyList.h>

#include <expat.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <string_view>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNumber.h>

namespace {

constexpr std::size_t largestFile = std::size_t{16} << 20;
constexpr std::size_t deepestNesting = 100;

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view space = " \t\r\n";
  const std::size_t start = std::min(text.find_first_not_of(space), text.size());
  return text.substr(start, text.find_last_not_of(space) + 1 - start);
}

NSRefPtr<NSObject> integerFrom(std::string_view text) {
  const std::string_view digits = trimmed(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return nullptr;
  return NSNumber::numberWithInteger(value);
}

// UTF-16 that ends in half a code unit, which the parser overlooks after a carriage return. It recognises
// UTF-16 by the mark or the NUL in the first two bytes (XML 1.0, appendix F).
bool endsInHalfAUnit(std::span<const std::byte> xml) {
  if (xml.size() % 2 == 0 || xml.size() < 2) return false;
  const auto first = std::to_integer<unsigned>(xml[0]), second = std::to_integer<unsigned>(xml[1]);
  return first == 0 || second == 0 || (first >= 0xFE && second >= 0xFE);
}

// Turns the parser's events into objects; anything unexpected stops the parser.
class Reader {
 public:
  NSRefPtr<NSObject> read(std::span<const std::byte> xml) {
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser || xml.size() > largestFile || endsInHalfAUnit(xml)) return nullptr;
    parser_ = parser.get();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(
        parser_, [](void* self, const XML_Char* name, const XML_Char**) { of(self).start(name); },
        [](void* self, const XML_Char* name) { of(self).end(name); });
    XML_SetCharacterDataHandler(parser_, [](void* self, const XML_Char* text, int length) {
      of(self).text({text, static_cast<std::size_t>(length)});
    });
    // The parser keys its own tables. Declarations could make few bytes cost much time: of entities in
    // entities, or of attributes by default.
    XML_SetStartDoctypeDeclHandler(
        parser_, [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int hasSubset) {
          if (hasSubset) of(self).refuse();
        });
    XML_SetSkippedEntityHandler(parser_, [](void* self, const XML_Char*, int) { of(self).refuse(); });
    const auto status =
        XML_Parse(parser_, reinterpret_cast<const char*>(xml.data()), static_cast<int>(xml.size()), XML_TRUE);
    return status == XML_STATUS_OK && !refused_ ? root_ : nullptr;
  }

 private:
  // An open element: its name, its characters, and what a collection holds so far.
  struct Level {
    std::string name;
    std::string characters;
    NSRefPtr<NSMutableArray> array;
    NSRefPtr<NSMutableDictionary> dictionary;
    NSRefPtr<NSString> key;
  };

  static Reader& of(void* self) { return *static_cast<Reader*>(self); }

  void refuse() {
    refused_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  bool mayHold(std::string_view child) const {
    if (levels_.empty()) return child == "plist" && !root_;
    const Level& parent = levels_.back();
    if (parent.name == "plist") return child != "plist" && child != "key" && !root_;
    if (parent.name == "dict") return (child == "key") == !parent.key;
    return parent.name == "array" && child != "key";
  }

  void start(std::string_view name) {
    if (refused_) return;
    if (!mayHold(name) || levels_.size() >= deepestNesting) return refuse();
    Level level{std::string(name), {}, nullptr, nullptr, nullptr};
    if (name == "array") level.array = NSMutableArray::array();
    if (name == "dict") level.dictionary = NSMutableDictionary::dictionary();
    levels_.push_back(std::move(level));
  }

  void text(std::string_view characters) {
    if (!refused_ && !levels_.empty()) levels_.back().characters += characters;
  }

  void end(std::string_view name) {
    if (refused_) return;
    const Level level = std::move(levels_.back());
    levels_.pop_back();
    if (name == "plist") return;
    const NSRefPtr<NSObject> object = objectOf(level);
    if (!object) return refuse();
    take(name, object);
  }

  static NSRefPtr<NSObject> objectOf(const Level& level) {
    const bool scalar = !level.array && !level.dictionary;
    if (!scalar && !trimmed(level.characters).empty()) return nullptr;
    if (level.array) return level.array->copy();
    if (level.dictionary) return level.key ? nullptr : NSRefPtr<NSObject>(level.dictionary->copy());
    if (level.name == "true" || level.name == "false") return NSNumber::numberWithBool(level.name == "true");
    if (level.name == "integer") return integerFrom(level.characters);
    for (const std::string_view known : {"string", "key", "real", "date", "data"})
      if (level.name == known) return NSString::stringWithUTF8String(level.characters);
    return nullptr;
  }

  void take(std::string_view name, const NSRef<NSObject>& object) {
    Level& parent = levels_.back();
    if (parent.name == "plist") {
      root_ = object;
    } else if (parent.array) {
      parent.array->addObject(object);
    } else if (name == "key") {
      if (parent.dictionary->objectForKey(object)) return refuse();
      parent.key = NSDynamicCast<NSString>(object);
    } else {
      parent.dictionary->setObject(object, parent.key);
      parent.key = nullptr;
    }
  }

  XML_Parser parser_ = nullptr;
  std::vector<Level> levels_;
  NSRefPtr<NSObject> root_;
  bool refused_ = false;
};

// A file that is open for reading. Opening does not wait for the writer of a pipe.
class File {
 public:
  explicit File(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  bool isRegular() const {
    struct stat status {};
    return descriptor_ >= 0 && ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
  }
  /// Returns how many bytes were read: 0 at the end, -1 on failure.
  ssize_t read(std::span<char> place) const {
    ssize_t count;
    do count = ::read(descriptor_, place.data(), place.size());
    while (count < 0 && errno == EINTR);
    return count;
  }

 private:
  int descriptor_;
};

}  // namespace

NSRefPtr<NSObject> NSPropertyListWithData(std::span<const std::byte> xml) { return Reader().read(xml); }

NSRefPtr<NSObject> NSPropertyListWithContentsOfFile(const std::string& path) {
  const File file(path);
  if (!file.isRegular()) return nullptr;
  std::string content;
  std::array<char, 8192> part{};
  ssize_t count = 0;
  while ((count = file.read(part)) > 0) {
    content.append(part.data(), static_cast<std::size_t>(count));
    if (content.size() > largestFile) return nullptr;
  }
  if (count < 0) return nullptr;
  return NSPropertyListWithData(std::as_bytes(std::span(content)));
}
