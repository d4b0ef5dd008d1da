#include <CoreServices/Internal/UTFileNames.h>

#include <fnmatch.h>

#include <algorithm>

#include <CoreServices/Internal/UTTag.h>

namespace {

constexpr const char* wildcards = "*?[\\";

bool isLiteral(std::string_view text) { return text.find_first_of(wildcards) == text.npos; }

}  // namespace

void UTFileNames::add(std::string_view pattern, UTTypeNumber type) {
  if (isLiteral(pattern)) return names_[std::string(pattern)].push_back(type);
  if (!pattern.starts_with('*') || !isLiteral(pattern.substr(1)))
    return patterns_.push_back({std::string(pattern), type});
  ends_[std::string(pattern.substr(1))].push_back(type);
  longestEnd_ = std::max(longestEnd_, pattern.size() - 1);
}

const UTTypeNumbers& UTFileNames::withExtension(std::string_view extension) const {
  static const UTTypeNumbers& none = *new UTTypeNumbers;  // never destroyed: a query may come late
  const auto found = ends_.find(std::string(".").append(extension));
  return found == ends_.end() ? none : found->second;
}

std::optional<UTTypeNumber> UTFileNames::find(std::string_view name) const {
  const std::string exact(name), lower = UTLowerCase(name);
  for (const std::string& each : {exact, lower})
    if (const auto found = names_.find(each); found != names_.end()) return found->second.front();
  if (const auto found = findByEnd(exact, lower)) return found;
  return findByPattern(exact, lower);
}

std::optional<UTTypeNumber> UTFileNames::findByEnd(std::string_view name, std::string_view lower) const {
  const std::size_t first = name.size() > longestEnd_ ? name.size() - longestEnd_ : 1;
  for (std::size_t start = std::max<std::size_t>(first, 1); start < name.size(); ++start)
    for (const std::string_view end : {name.substr(start), lower.substr(start)})
      if (const auto found = ends_.find(end); found != ends_.end()) return found->second.front();
  return std::nullopt;
}

std::optional<UTTypeNumber> UTFileNames::findByPattern(const std::string& name,
                                                       const std::string& lower) const {
  for (const Pattern& each : patterns_)
    for (const std::string* text : {&name, &lower})
      if (fnmatch(each.text.c_str(), text->c_str(), 0) == 0) return each.type;
  return std::nullopt;
}
