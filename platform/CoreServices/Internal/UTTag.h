#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSString.h>

/// What a tag is.
enum class UTTagKind { extension, mimeType };

/// A filename extension or a MIME type, in the spelling in which tags are compared.
struct UTTag {
  UTTagKind kind;
  std::string text;  ///< UTF-8, not empty
  friend bool operator==(const UTTag&, const UTTag&) = default;
};

/// The tags of a type, the preferred one of each kind first.
struct UTTags {
  std::vector<std::string> extensions;
  std::vector<std::string> mimeTypes;

  const std::vector<std::string>& operator[](UTTagKind kind) const {
    return kind == UTTagKind::extension ? extensions : mimeTypes;
  }
  std::vector<std::string>& operator[](UTTagKind kind) {
    return kind == UTTagKind::extension ? extensions : mimeTypes;
  }
};

/// The names of the two tag classes; both are declared types, too.
///@{
constexpr std::string_view UTExtensionClassName = "public.filename-extension";
constexpr std::string_view UTMIMETypeClassName = "public.mime-type";
///@}

/// Returns the kind that a tag class stands for, or no value if there is no such class.
std::optional<UTTagKind> UTTagKindOfClass(const NSString& tagClass);

/// Returns the tag in lower case (ASCII letters only), a MIME type without its parameters and the space
/// around it; no value if nothing is left or the string is not UTF-8.
///@{
std::optional<UTTag> UTTagFrom(UTTagKind kind, std::string_view utf8);
std::optional<UTTag> UTTagFrom(UTTagKind kind, const NSString& text);
///@}

/// Returns the string with its ASCII letters in lower case.
std::string UTLowerCase(std::string_view text);
