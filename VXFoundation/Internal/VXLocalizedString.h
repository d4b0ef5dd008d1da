#pragma once

#include <Foundation/NSString.h>

/// The text for the key, an English sentence, in the user's language, looked up anew in the library's own
/// bundle: the key itself where there is no translation, absent where there is no bundle.
NSRefPtr<NSString> VXLocalizedString(NSStringArg key);
