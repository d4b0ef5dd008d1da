#pragma once

#include <Foundation/NSString.h>

/// Returns the string for the key, an English sentence, in the user's language, looked up anew in the
/// library's bundle, in the given table or in "Localizable". Returns the key itself if there is no
/// translation, nil if there is no bundle.
NSRefPtr<NSString> VXLocalizedString(NSStringArg key, NSStringArg table = nullptr);
