#pragma once

#include <VXFoundation/VXNotation.h>

#include <map>
#include <string>

/// The forms of text, by their names on the command line: those that can be written, and those that can be
/// read.
///@{
extern const std::map<std::string, VXNotation> encodedForms;
extern const std::map<std::string, VXNotation> decodedForms;
///@}
