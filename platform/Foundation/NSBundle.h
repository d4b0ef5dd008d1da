#pragma once

#include <string>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// A folder that holds code and its resources: a loaded library or program beside which a folder
/// "Resources" with an information file, Info.plist, lies. Nothing is kept between calls: files are read
/// anew each time, and a damaged one counts as one that is not there. Fixed; any number of threads may
/// use one at once.
class NS_EXPORT NSBundle : public NSObject::Subclass<NSBundle> {
 public:
  /// The bundle of the program.
  static NSRef<NSBundle> mainBundle();
  /// The bundle of the program or of a library that is loaded now; absent when none has the identifier.
  static NSRefPtr<NSBundle> bundleWithIdentifier(NSStringArg identifier);
  /// The bundle in a folder, named in UTF-8; absent when the folder holds no resources.
  static NSRefPtr<NSBundle> bundleWithPath(NSStringArg path);

  /// The folder: of the program or a loaded library absolute and without links, else as it was given. Empty
  /// when it is not UTF-8.
  NSRef<NSString> bundlePath() const;
  /// Absent when the information file has none.
  NSRefPtr<NSString> bundleIdentifier() const;
  /// The information file; empty when there is none.
  NSRef<NSDictionary> infoDictionary() const;

  /// The text for the key in the best of the user's languages that has it, from Resources/LANGUAGE.lproj;
  /// an absent table is "Localizable". Where there is none: the value if it is not empty, else the key. A
  /// nil key gives the value, or the empty text.
  NSRef<NSString> localizedStringForKey(NSStringArg key, NSStringArg value, NSStringArg table) const;

 protected:
  /// A bundle in the folder, which need not be there.
  explicit NSBundle(std::string folder) : folder_(std::move(folder)) {}

 private:
  NSRefPtr<NSString> translationOf(const NSString& key, const std::string& table) const;

  std::string folder_;
};
