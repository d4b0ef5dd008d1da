#include <Foundation/NSBundle.h>

#include <filesystem>
#include <mutex>
#include <span>

#include <Foundation/Internal/NSLoadedCode.h>
#include <Foundation/Internal/NSResourceFile.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSPropertyList.h>

namespace {

namespace files = std::filesystem;

struct LibraryInformation {
  NSRefPtr<NSDictionary> dictionary;
  NSBundle::ResourceContent* resources = nullptr;
};

// Never destroyed: exit handlers of a host may still need it.
struct Registered {
  std::mutex mutex;
  LibraryInformation information;
};
Registered& registered() {
  static Registered& ofLibrary = *new Registered;
  return ofLibrary;
}

LibraryInformation libraryInformation() {
  const std::lock_guard lock(registered().mutex);
  return registered().information;
}

}  // namespace

NSRef<NSBundle> NSBundle::mainBundle() { return alloc(NSFolderOfProgram()); }

NSRefPtr<NSBundle> NSBundle::bundleWithIdentifier(NSStringArg identifier) {
  const auto sought = identifier.borrow();
  if (!sought) return nullptr;
  const auto ifSought = [&](const NSRef<NSBundle>& bundle) -> NSRefPtr<NSBundle> {
    return sought->isEqual(bundle->bundleIdentifier()) ? NSRefPtr<NSBundle>(bundle) : nullptr;
  };
  const LibraryInformation information = libraryInformation();
  const auto library = [&]() -> NSRefPtr<NSBundle> {
    if (!information.dictionary) return nullptr;
    return ifSought(alloc(NSFolderOfLibrary(), information.dictionary, information.resources));
  };
  if (const auto bundle = information.resources ? library() : nullptr) return bundle;
  if (const auto bundle = ifSought(alloc(NSFolderOfProgram()))) return bundle;
  if (const auto bundle = ifSought(alloc(NSFolderOfLibrary()))) return bundle;
  for (const std::string& folder : NSFoldersOfLoadedLibraries())
    if (const auto bundle = ifSought(alloc(folder))) return bundle;
  return library();
}

void NSBundle::setLibraryInformation(const NSRefPtr<NSDictionary>& information, ResourceContent* resources) {
  const std::lock_guard lock(registered().mutex);
  registered().information = {information ? NSRefPtr<NSDictionary>(information->copy()) : nullptr, resources};
}

NSRefPtr<NSBundle> NSBundle::bundleWithPath(NSStringArg path) {
  const auto text = path.borrow();
  const auto folder = text ? text->UTF8String() : std::nullopt;
  std::error_code error;
  if (!folder || folder->empty() || !files::is_directory(files::path(*folder) / "Resources", error))
    return nullptr;
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
  const NSRefPtr<NSDictionary> info = registered_ ? registered_ : resource("Info.plist");
  return info ? NSRef<NSDictionary>(info) : NSDictionary::dictionary();
}

NSRefPtr<NSDictionary> NSBundle::resource(const std::string& name) const {
  if (resources_)
    return NSDynamicCast<NSDictionary>(NSPropertyListWithData(std::as_bytes(std::span(resources_(name)))));
  if (folder_.empty()) return nullptr;
  return NSResourceDictionary(folder_ + "/Resources/" + name);
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
    std::string name = language;
    name.append(".lproj/").append(table).append(".strings");
    const NSRefPtr<NSDictionary> strings = resource(name);
    if (!strings) continue;
    if (const auto translation = NSDynamicCast<NSString>(strings->objectForKey(key))) return translation;
  }
  return nullptr;
}
