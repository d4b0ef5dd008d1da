#include <Foundation/NSBundle.h>

#include <link.h>

#include <filesystem>
#include <vector>

#include <Foundation/NSLocale.h>
#include <Foundation/NSPropertyList.h>

namespace {

namespace files = std::filesystem;

NSRefPtr<NSDictionary> dictionaryInFile(const files::path& path) {
  return NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(path.string()));
}

// Returns the folder of the file that a link points to, or an empty string if there is no such file.
std::string folderOf(const files::path& file) {
  std::error_code error;
  return files::canonical(file, error).parent_path().string();
}

constexpr const char* program = "/proc/self/exe";

// Returns the names of the program and of every library that is loaded now.
std::vector<std::string> loadedCode() {
  std::vector<std::string> names{program};
  dl_iterate_phdr(
      [](dl_phdr_info* image, std::size_t, void* found) {
        if (image->dlpi_name && *image->dlpi_name)
          static_cast<std::vector<std::string>*>(found)->push_back(image->dlpi_name);
        return 0;
      },
      &names);
  return names;
}

}  // namespace

NSRef<NSBundle> NSBundle::mainBundle() { return alloc(folderOf(program)); }

NSRefPtr<NSBundle> NSBundle::bundleWithIdentifier(NSStringArg identifier) {
  const auto sought = identifier.borrow();
  if (!sought) return nullptr;
  for (const std::string& name : loadedCode()) {
    const NSRef<NSBundle> bundle = alloc(folderOf(name));
    const NSRefPtr<NSString> found = bundle->bundleIdentifier();
    if (found && found->isEqualToString(*sought)) return bundle;
  }
  return nullptr;
}

NSRefPtr<NSBundle> NSBundle::bundleWithPath(NSStringArg path) {
  const auto text = path.borrow();
  const auto folder = text ? text->UTF8String() : std::nullopt;
  std::error_code error;
  if (!folder || !files::is_directory(files::path(*folder) / "Resources", error)) return nullptr;
  return alloc(*folder);
}

NSRef<NSString> NSBundle::bundlePath() const {
  const NSRefPtr<NSString> path = NSString::stringWithUTF8String(folder_);
  return path ? NSRef<NSString>(path) : NSString::string();
}

NSRefPtr<NSString> NSBundle::bundleIdentifier() const {
  return NSDynamicCast<NSString>(infoDictionary()->objectForKey("CFBundleIdentifier"));
}

NSRef<NSDictionary> NSBundle::infoDictionary() const {
  const NSRefPtr<NSDictionary> info = dictionaryInFile(files::path(folder_) / "Resources" / "Info.plist");
  return info ? NSRef<NSDictionary>(info) : NSDictionary::dictionary();
}

NSRef<NSString> NSBundle::localizedStringForKey(NSStringArg key, NSStringArg value, NSStringArg table) const {
  const NSRefPtr<NSString> sought = key.get();
  const NSRefPtr<NSString> fallback = value.get();
  const auto name = table ? table.borrow()->UTF8String() : "Localizable";
  if (sought && name)
    if (const NSRefPtr<NSString> translation = translationOf(*sought, *name)) return translation;
  if (fallback && fallback->length() > 0) return fallback;
  return sought ? NSRef<NSString>(sought) : NSString::string();
}

NSRefPtr<NSString> NSBundle::translationOf(const NSString& key, const std::string& table) const {
  for (const std::string& language : NSPreferredLanguages()) {
    if (language.find('/') != std::string::npos) continue;
    const NSRefPtr<NSDictionary> strings =
        dictionaryInFile(files::path(folder_) / "Resources" / (language + ".lproj") / (table + ".strings"));
    if (!strings) continue;
    if (const auto translation = NSDynamicCast<NSString>(strings->objectForKey(key))) return translation;
  }
  return nullptr;
}
