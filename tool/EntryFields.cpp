#include "tool/EntryFields.h"

#include <algorithm>
#include <map>

#include "tool/Printable.h"

namespace {

constexpr const char* columns[] = {"kind",  "account", "service", "server",
                                   "label", "path",    "port",    "protocol"};

std::string printed(const FieldValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  return printable(std::get<std::u16string_view>(value));
}

/// Escapes the spaces that could be taken for the end of a column.
std::string cell(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEdge = i == 0 || i + 1 == text.size() || text[i - 1] == ' ';
    result += text[i] == ' ' && isEdge ? std::string("\\u{20}") : std::string(1, text[i]);
  }
  return result;
}

using Cells = std::map<std::string, std::string>;

Cells cellsOf(const SecAttributes& attributes) {
  Cells cells{{"kind", kindOf(attributes)}};
  for (const auto& [name, value] : fieldsOf(attributes)) cells[name] = cell(printed(value));
  return cells;
}

/// The number of characters, which is their width for all but the widest scripts.
std::size_t widthOf(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

void appendColumn(std::vector<std::string>& lines, const std::vector<Cells>& table, const char* name) {
  std::size_t width = 0;
  const auto textAt = [&](std::size_t row) {
    const auto found = table[row].find(name);
    return found == table[row].end() ? std::string() : found->second;
  };
  for (std::size_t row = 0; row < table.size(); ++row) width = std::max(width, widthOf(textAt(row)));
  for (std::size_t row = 0; row < table.size(); ++row)
    lines[row] += textAt(row) + std::string(width - widthOf(textAt(row)) + 2, ' ');
}

Cells headings(std::span<const SecRow> rows) {
  Cells heading;
  for (const SecRow& row : rows)
    for (auto [name, value] : cellsOf(row.entry.attributes)) {
      std::string& title = heading[name] = name;
      std::transform(title.begin(), title.end(), title.begin(), [](char c) { return char(c - 'a' + 'A'); });
    }
  return heading;
}

}  // namespace

const char* kindOf(const SecAttributes& attributes) {
  return attributes.itemClass == SecItemClass::genericPassword ? "generic" : "internet";
}

std::vector<std::pair<std::string, FieldValue>> fieldsOf(const SecAttributes& attributes) {
  std::vector<std::pair<std::string, FieldValue>> fields;
  const auto add = [&](const char* name, const auto& value) {
    if (value) fields.emplace_back(name, *value);
  };
  add("account", attributes.account);
  add("service", attributes.service);
  add("server", attributes.server);
  add("label", attributes.label);
  add("path", attributes.path);
  add("port", attributes.port);
  add("protocol", attributes.protocol);
  return fields;
}

std::optional<SecText>* textField(SecAttributes& attributes, std::string_view name) {
  if (name == "account") return &attributes.account;
  if (name == "service") return &attributes.service;
  if (name == "server") return &attributes.server;
  if (name == "label") return &attributes.label;
  if (name == "path") return &attributes.path;
  if (name == "protocol") return &attributes.protocol;
  return nullptr;
}

std::string linesOf(const SecAttributes& attributes) {
  std::string lines;
  for (const auto& [name, value] : fieldsOf(attributes)) lines += name + ": " + printed(value) + '\n';
  return lines;
}

std::string tableOf(std::span<const SecRow> rows) {
  std::vector<Cells> table{headings(rows)};
  for (const SecRow& row : rows) table.push_back(cellsOf(row.entry.attributes));
  std::vector<std::string> lines(table.size());
  for (const char* name : columns)
    if (table.front().contains(name)) appendColumn(lines, table, name);
  std::string text;
  if (rows.empty()) return text;
  for (std::string& line : lines) text += line.erase(line.find_last_not_of(' ') + 1) + '\n';
  return text;
}
