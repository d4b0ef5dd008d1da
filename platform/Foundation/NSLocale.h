#pragma once

#include <functional>
#include <string>
#include <vector>

#include <Foundation/NSExport.h>

/// Returns the languages that the user prefers, best first, as names of localisations ("de_AT", "de", ...),
/// from LANGUAGE, LC_ALL, LC_MESSAGES and LANG in gettext's order: the locale is the first of the last three
/// that is set and not empty; the languages in LANGUAGE, a list, come before it, unless the locale is exactly
/// C or POSIX or none is set. Each name is followed by its less specific forms. C or POSIX in the list ends
/// it: from there on, strings are untranslated. `variable` looks up an environment variable and returns null
/// if it is not set.
NS_EXPORT std::vector<std::string> NSPreferredLanguages(
    const std::function<const char*(const char* name)>& variable);

/// The same for the current environment of the process.
NS_EXPORT std::vector<std::string> NSPreferredLanguages();
