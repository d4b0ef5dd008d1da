#pragma once

#include <VXFoundation/VXFoundation.h>
#include <VXFoundation/VXQt.h>

/// Returns the English string in the user's language, from the table "Window" next to the program.
inline QString localised(NSStringArg english) {
  return VXQt::qString(NSBundle::mainBundle()->localizedStringForKey(english, nullptr, "Window"));
}

/// Returns the library's title of a recovery option in the user's language.
inline NSRef<NSString> titleOf(NSStringArg option) {
  return NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier)
      ->localizedStringForKey(option, nullptr, "Recovery");
}
