#pragma once

#include <Security/SecStorage.h>

#include <string>
#include <string_view>
#include <vector>

/// What browsers export: comma-separated values (RFC 4180) in UTF-8, under a line with the names of their
/// columns.
struct BrowserCSV {
  std::vector<SecRow> rows;          // internet passwords; the numbers mean nothing
  std::vector<std::string> leftOut;  // the columns with values for which entries have no field
};

/// Reads it: "url", "username" and "password" must be there, and "name" is the label. Throws Failure, with
/// the line, if it is anything else.
BrowserCSV readBrowserCSV(std::string_view csv);
