#pragma once

#include <string>
#include <string_view>

/// Returns text for people in UTF-8: control and bidirectional characters, line separators, unpaired
/// surrogates and bytes that are not UTF-8 become escapes such as "\u{1b}", so that no name can end a line,
/// look like another or drive a terminal. A backslash that would start such an escape is escaped, too.
///@{
std::string printable(std::string_view utf8);
std::string printable(std::u16string_view units);
///@}
