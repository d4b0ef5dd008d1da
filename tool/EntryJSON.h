#pragma once

#include <Security/SecStorage.h>

#include <span>
#include <string_view>
#include <vector>

#include "tool/JSONText.h"

/// Whether an entry is written with its secret: as "password" or, if that is not UTF-8, as "passwordBase64".
enum class JSONSecrets { leave, write };

/// Appends an entry as an object, in one line: "kind" and its fields, by their names.
void appendEntry(JSONText& text, const SecEntry& entry, JSONSecrets secrets);
/// Returns an array of entries, one in a line.
JSONText arrayOf(std::span<const SecRow> rows, JSONSecrets secrets);

/// Returns the entries of an array that was written with secrets; the numbers of the rows mean nothing.
/// Throws Failure, with the place, for anything else.
std::vector<SecRow> rowsOfJSON(std::string_view json);
