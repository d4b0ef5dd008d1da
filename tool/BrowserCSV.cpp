#include "tool/BrowserCSV.h"

#include <Foundation/NSUnicode.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "tool/CSVReader.h"
#include "tool/Failure.h"

namespace {

SecText textOf(std::string_view utf8, const CSVReader& csv) {
  const auto units = NSUTF16FromUTF8(utf8);
  if (!units) csv.fail();
  return SecText(*units);
}

/// Sets server, port, protocol and path from a URL (RFC 3986) with an authority, whose user is left out.
void setPlace(SecAttributes& attributes, std::string_view url, const CSVReader& csv) {
  const std::size_t scheme = url.find("://");
  if (scheme == url.npos || scheme == 0) csv.fail();
  attributes.protocol = textOf(url.substr(0, scheme), csv);
  url.remove_prefix(scheme + 3);
  url = url.substr(0, url.find_first_of("?#"));
  const std::size_t slash = std::min(url.find('/'), url.size());
  if (slash + 1 < url.size()) attributes.path = textOf(url.substr(slash), csv);
  std::string_view authority = url.substr(0, slash);
  authority.remove_prefix(authority.rfind('@') + 1);
  const std::size_t colon = authority.rfind(':');
  if (colon != authority.npos && authority.find(']', colon) == authority.npos) {
    std::int64_t port = 0;
    const std::string_view digits = authority.substr(colon + 1);
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), port);
    if (error != std::errc() || end != digits.end() || port < 1 || port > 65535) csv.fail();
    attributes.port = port;
    authority = authority.substr(0, colon);
  }
  if (authority.empty()) csv.fail();
  attributes.server = textOf(authority, csv);
}

/// The columns by their names.
class Columns {
 public:
  explicit Columns(const CSVReader& csv) {
    for (const SecretText& value : csv.values()) names_.emplace_back(value.view());
    for (const char* needed : {"url", "username", "password"})
      if (place(needed) == names_.size()) csv.fail();
    hasValues_.resize(names_.size());
  }

  /// Returns the value of a column in the record, or nothing if there is no such column.
  std::optional<std::string_view> value(const char* name, const CSVReader& csv) const {
    const std::size_t column = place(name);
    if (column == names_.size()) return std::nullopt;
    return csv.values()[column].view();
  }

  void note(const CSVReader& csv) {
    if (csv.values().size() != names_.size()) csv.fail();
    for (std::size_t i = 0; i < names_.size(); ++i)
      hasValues_[i] = hasValues_[i] || !csv.values()[i].view().empty();
  }

  /// Returns the columns that had values and for which entries have no field.
  std::vector<std::string> leftOut() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < names_.size(); ++i)
      if (hasValues_[i] && std::ranges::find(kept, names_[i]) == std::end(kept)) names.push_back(names_[i]);
    return names;
  }

 private:
  static constexpr std::string_view kept[] = {"url", "username", "password", "name"};

  std::size_t place(std::string_view name) const {
    return static_cast<std::size_t>(std::ranges::find(names_, name) - names_.begin());
  }

  std::vector<std::string> names_;
  std::vector<bool> hasValues_;
};

SecRow rowOf(const Columns& columns, const CSVReader& csv) {
  SecEntry entry;
  SecAttributes& attributes = entry.attributes;
  attributes.itemClass = SecItemClass::internetPassword;
  attributes.account = textOf(*columns.value("username", csv), csv);
  setPlace(attributes, *columns.value("url", csv), csv);
  if (const auto name = columns.value("name", csv); name && !name->empty())
    attributes.label = textOf(*name, csv);
  entry.secret = SecSecret(std::as_bytes(std::span(*columns.value("password", csv))));
  return {0, std::move(entry)};
}

}  // namespace

BrowserCSV readBrowserCSV(std::string_view text) {
  CSVReader csv(text);
  if (!csv.next()) csv.fail();
  Columns columns(csv);
  BrowserCSV result;
  while (csv.next()) {
    columns.note(csv);
    result.rows.push_back(rowOf(columns, csv));
  }
  result.leftOut = columns.leftOut();
  return result;
}
