#pragma once

#include <string>
#include <string_view>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// A folder that holds code and its resources: a loaded library or program and, next to it, a folder
/// "Resources" with an information file, Info.plist. Each call looks at the files as they are then: one that
/// has changed is read again, and a damaged one counts as missing. Immutable; any number of threads may use
/// one at once.
class NS_EXPORT NSBundle : public NSObject::Subclass<NSBundle> {
 public:
  /// Returns the bundle of the program.
  static NSRef<NSBundle> mainBundle();
  /// Returns the bundle of the program or of a library that is loaded now; nil if none of them has the
  /// identifier. The folders of the program and of this library are those from which they were loaded.
  static NSRefPtr<NSBundle> bundleWithIdentifier(NSStringArg identifier);
  /// Returns the bundle in a folder, named in UTF-8, or nil if the folder holds no resources.
  static NSRefPtr<NSBundle> bundleWithPath(NSStringArg path);

  /// Returns the content of a resource, such as "de.lproj/Localizable.strings"; empty if there is none.
  using ResourceContent = std::string_view(std::string_view name);

  /// Registers the information of this library, for copies of it without its resources: where no information
  /// file has its identifier, bundleWithIdentifier returns a bundle with this information. With a function
  /// that is not null, it always does, and the resources are those that the function returns. Nil removes the
  /// information.
  static void setLibraryInformation(const NSRefPtr<NSDictionary>& information,
                                    ResourceContent* resources = nullptr);

  /// Returns the path of the folder: absolute and without symbolic links for the program or a loaded library,
  /// otherwise as it was given. Empty if it is unknown or not UTF-8.
  NSRef<NSString> bundlePath() const;
  /// Returns the identifier in the information file, or nil if there is none.
  NSRefPtr<NSString> bundleIdentifier() const;
  /// Returns the content of the information file, or the registered information; empty if there is neither.
  NSRef<NSDictionary> infoDictionary() const;

  /// Returns the localised string for the key in the best of the user's languages that has it, from
  /// Resources/LANGUAGE.lproj; a nil table means "Localizable". If no language has it, returns the value if
  /// it is not empty, otherwise the key. For a nil key, returns the value or the empty string.
  NSRef<NSString> localizedStringForKey(NSStringArg key, NSStringArg value, NSStringArg table) const;

 protected:
  /// Creates a bundle in the folder, which need not exist; an empty one has no resources. Information that is
  /// not nil stands for that of the file, and a function that is not null for the resources.
  explicit NSBundle(std::string folder, NSRefPtr<NSDictionary> registered = nullptr,
                    ResourceContent* resources = nullptr)
      : folder_(std::move(folder)), registered_(std::move(registered)), resources_(resources) {}

 private:
  NSRefPtr<NSDictionary> resource(const std::string& name) const;
  NSRefPtr<NSString> translationOf(const NSString& key, const std::string& table) const;

  std::string folder_;
  NSRefPtr<NSDictionary> registered_;
  ResourceContent* resources_;
};
