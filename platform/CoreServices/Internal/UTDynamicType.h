#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <CoreServices/Internal/UTTag.h>

/// What a dynamic identifier of ours says: the tag of a type that has no declaration, and a type that it was
/// said to conform to. The identifier is "dyn.a" and, packed into characters of five bits each, the text
/// "e=EXTENSION" or "m=MIME-TYPE", with ":?c=TYPE" behind it if there is such a type. In the values, what is
/// not printable ASCII, and "%", ":" and "=", is percent-encoded (RFC 3986, section 2.1, of UTF-8).
struct UTDynamicType {
  UTTag tag;
  std::string conformsTo;  ///< an identifier, or empty
};

/// How a dynamic identifier begins.
constexpr std::string_view UTDynamicPrefix = "dyn.a";

/// Whether an identifier has the dynamic form, the prefix and more, whoever made it.
bool UTHasDynamicForm(std::string_view identifier);

/// Returns the identifier.
std::string UTDynamicIdentifier(const UTDynamicType& type);

/// Returns what the identifier says; no value for anything that UTDynamicIdentifier does not return.
std::optional<UTDynamicType> UTDynamicTypeFrom(std::string_view identifier);
