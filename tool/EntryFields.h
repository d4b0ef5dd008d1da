#pragma once

#include <Security/SecStorage.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// The fields of an entry as the tool writes them, each with its name, in a fixed order; missing ones are
/// left out. The views are valid as long as the attributes are.
///@{
using FieldValue = std::variant<std::u16string_view, std::int64_t>;
std::vector<std::pair<std::string, FieldValue>> fieldsOf(const SecAttributes& attributes);
///@}

/// Returns the place for the text of a field, or null if no field that is text has the name.
std::optional<SecText>* textField(SecAttributes& attributes, std::string_view name);

/// Returns "generic" or "internet".
const char* kindOf(const SecAttributes& attributes);

/// Returns the fields for people, one in a line.
std::string linesOf(const SecAttributes& attributes);
/// Returns the entries for people: a column for each field that one of them has, under its name. No value
/// contains two adjacent spaces, which separate the columns.
std::string tableOf(std::span<const SecRow> rows);
