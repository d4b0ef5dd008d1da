#include <Foundation/NSLocale.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

using Variable = std::function<const char*(const char*)>;

std::string_view valueOf(const Variable& variable, const char* name) {
  const char* value = variable(name);
  return value ? std::string_view(value) : std::string_view();
}

std::string_view localeName(const Variable& variable) {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (const std::string_view value = valueOf(variable, name); !value.empty()) return value;
  return "C";
}

bool isUntranslated(std::string_view language) { return language == "C" || language == "POSIX"; }

void addOnce(std::vector<std::string>& languages, std::string name) {
  if (std::find(languages.begin(), languages.end(), name) == languages.end())
    languages.push_back(std::move(name));
}

// Adds the forms of language[_territory][.codeset][@modifier], from the most specific one to the language
// alone. Chinese without a territory, and as written in Singapore, is simplified Chinese.
void addForms(std::vector<std::string>& languages, std::string_view locale) {
  const std::string modifier(locale.substr(std::min(locale.find('@'), locale.size())));
  const std::string_view plain = locale.substr(0, std::min(locale.find('@'), locale.find('.')));
  const std::string language(plain.substr(0, plain.find('_')));
  addOnce(languages, std::string(plain) + modifier);
  addOnce(languages, std::string(plain));
  addOnce(languages, language + modifier);
  addOnce(languages, language);
  if (plain == "zh" || plain == "zh_SG" || plain == "zh_Hans") addOnce(languages, "zh_CN");
}

}  // namespace

std::vector<std::string> NSPreferredLanguages(const Variable& variable) {
  std::vector<std::string> languages;
  const std::string_view locale = localeName(variable);
  if (isUntranslated(locale)) return languages;
  std::string_view list = valueOf(variable, "LANGUAGE");
  while (!list.empty()) {
    const std::string_view next = list.substr(0, list.find(':'));
    list.remove_prefix(std::min(next.size() + 1, list.size()));
    if (isUntranslated(next)) return languages;
    if (!next.empty()) addForms(languages, next);
  }
  addForms(languages, locale);
  return languages;
}

std::vector<std::string> NSPreferredLanguages() {
  return NSPreferredLanguages([](const char* name) { return std::getenv(name); });
}
