#include <CoreServices/Internal/UTMIMEDatabase.h>

#include <algorithm>
#include <array>
#include <charconv>

#include <CoreServices/Internal/UTTag.h>
#include <Foundation/NSUnicode.h>

namespace {

constexpr std::size_t longestPattern = 255;
constexpr int longestChain = 8;
constexpr std::string_view hidesFurther = "__NOGLOBS__";

template <class Each>
void forEachLine(std::string_view text, Each&& each) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (!line.starts_with('#')) each(line);
  }
}

constexpr std::array<bool, 256> charactersOfNames() {
  std::array<bool, 256> allowed{};
  for (const char c : std::string_view("abcdefghijklmnopqrstuvwxyz0123456789!#$&-^_.+"))
    allowed[static_cast<unsigned char>(c)] = true;
  return allowed;
}

constexpr auto isOfName = charactersOfNames();

// RFC 6838, section 4.2.
bool isMIMEType(std::string_view name) {
  const auto isPart = [](std::string_view part) {
    return !part.empty() && part.size() <= 127 && std::all_of(part.begin(), part.end(), [](char c) {
      return isOfName[static_cast<unsigned char>(c)];
    });
  };
  const std::size_t slash = name.find('/');
  return slash != name.npos && isPart(name.substr(0, slash)) && isPart(name.substr(slash + 1));
}

// Takes what is before the separator, and both, from the front of the text.
std::string_view takeField(std::string_view& text, char separator) {
  const std::string_view field = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(field.size() + 1, text.size()));
  return field;
}

std::optional<int> numberIn(std::string_view field) {
  int number = 0;
  const auto [end, error] = std::from_chars(field.begin(), field.end(), number);
  return error == std::errc() && end == field.end() ? std::optional(number) : std::nullopt;
}

}  // namespace

UTMIMEDatabase::UTMIMEDatabase(const std::vector<UTMIMEContents>& folders) {
  for (const UTMIMEContents& contents : folders) addFolder(contents);
  addParentsByRule();
  followAliases();
  std::stable_sort(globs_.begin(), globs_.end(),
                   [](const Glob& a, const Glob& b) { return a.weight > b.weight; });
}

UTMIMENumber UTMIMEDatabase::numberOf(std::string_view name) {
  if (const auto found = numbers_.find(name); found != numbers_.end()) return found->second;
  const UTMIMENumber number = count();
  numbers_.emplace(name, number);
  names_.emplace_back(name);
  types_.push_back(number);
  parents_.emplace_back();
  hidesFurtherGlobs_.push_back(false);
  return number;
}

std::optional<UTMIMENumber> UTMIMEDatabase::read(std::string_view field) {
  if (isMIMEType(field)) return numberOf(field);
  const std::string lower = UTLowerCase(field);
  return isMIMEType(lower) ? std::optional(numberOf(lower)) : std::nullopt;
}

// Calls `each` with the two names of every line.
template <class Each>
void UTMIMEDatabase::readPairs(std::string_view text, Each&& each) {
  forEachLine(text, [&](std::string_view line) {
    const auto first = read(takeField(line, ' '));
    const auto second = read(line);
    if (first && second) each(*first, *second);
  });
}

// Reads WEIGHT:TYPE:PATTERN or WEIGHT:TYPE:PATTERN:FLAGS.
std::optional<UTMIMEDatabase::Glob> UTMIMEDatabase::readGlob(std::string_view line) {
  const auto weight = numberIn(takeField(line, ':'));
  const auto type = read(takeField(line, ':'));
  const std::string_view pattern = takeField(line, ':');
  if (!weight || !type || pattern.empty() || pattern.size() > longestPattern || !NSIsUTF8(pattern))
    return std::nullopt;
  const bool caseMatters = line == "cs" || pattern == hidesFurther;
  return Glob{caseMatters ? std::string(pattern) : UTLowerCase(pattern), *type, *weight};
}

void UTMIMEDatabase::addFolder(const UTMIMEContents& contents) {
  forEachLine(contents.types, [this](std::string_view line) { read(line); });
  readPairs(contents.aliases, [this](UTMIMENumber alias, UTMIMENumber type) {
    if (types_[alias] == alias) types_[alias] = type;
  });
  readPairs(contents.subclasses,
            [this](UTMIMENumber type, UTMIMENumber parent) { parents_[type].push_back(parent); });
  addGlobs(contents.globs);
}

void UTMIMEDatabase::addGlobs(std::string_view text) {
  Numbers hiding;
  forEachLine(text, [&](std::string_view line) {
    auto glob = readGlob(line);
    if (!glob) return;
    if (glob->pattern == hidesFurther)
      hiding.push_back(glob->type);
    else if (!hidesFurtherGlobs_[glob->type])
      globs_.push_back(*std::move(glob));
  });
  for (const UTMIMENumber type : hiding) hidesFurtherGlobs_[type] = true;
}

// Gives each name its type, and parents that are types. An alias may stand for another one; those that run in
// a circle are types.
void UTMIMEDatabase::followAliases() {
  const Numbers direct = types_;
  spellings_.resize(names_.size());
  for (UTMIMENumber name = 0; name < count(); ++name) {
    for (int step = 0; step < longestChain; ++step) types_[name] = direct[types_[name]];
    if (direct[types_[name]] != types_[name]) types_[name] = name;
    if (types_[name] == name)
      spellings_[name].insert(spellings_[name].begin(), name);
    else
      spellings_[types_[name]].push_back(name);
  }
  for (Numbers& parents : parents_)
    for (UTMIMENumber& parent : parents) parent = types_[parent];
}

void UTMIMEDatabase::addParentsByRule() {
  for (UTMIMENumber name = 0; name < count(); ++name)
    for (const std::string_view parent : parentsByRule(names_[name])) {
      const UTMIMENumber number = numberOf(parent);
      parents_[name].push_back(number);
    }
}

UTMIMEDatabase::Numbers UTMIMEDatabase::ancestors(UTMIMENumber type) const {
  Numbers found{type};
  std::vector<bool> seen(count());
  seen[type] = true;
  for (std::size_t i = 0; i < found.size(); ++i)
    for (const UTMIMENumber parent : parents_[found[i]]) {
      if (!seen[parent]) found.push_back(parent);
      seen[parent] = true;
    }
  return found;
}

std::vector<std::string_view> UTMIMEDatabase::parentsByRule(std::string_view type) {
  std::vector<std::string_view> parents;
  if (type.starts_with("text/")) parents.emplace_back("text/plain");
  if (!type.starts_with("inode/")) parents.emplace_back("application/octet-stream");
  return parents;
}
