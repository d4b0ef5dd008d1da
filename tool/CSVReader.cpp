#include "tool/CSVReader.h"

#include <algorithm>
#include <string>

#include "tool/Failure.h"

CSVReader::CSVReader(std::string_view text) : rest_(text) { take("\xEF\xBB\xBF"); }

void CSVReader::fail() const {
  throw Failure("line {1} is not what a browser exports"_text(std::to_string(record_)));
}

bool CSVReader::take(std::string_view expected) {
  if (!rest_.starts_with(expected)) return false;
  rest_.remove_prefix(expected.size());
  return true;
}

std::string_view CSVReader::takeUntil(std::string_view characters) {
  const std::string_view taken = rest_.substr(0, rest_.find_first_of(characters));
  rest_.remove_prefix(taken.size());
  line_ += static_cast<std::size_t>(std::ranges::count(taken, '\n'));
  return taken;
}

SecretText CSVReader::value() {
  if (!take("\"")) return SecretText(takeUntil(",\"\r\n"));
  SecretText value(takeUntil("\""));
  while (take("\"\"")) value << "\"" << takeUntil("\"");
  if (!take("\"")) fail();
  return value;
}

void CSVReader::readRecord() {
  record_ = line_;
  values_.clear();
  do values_.push_back(value());
  while (take(","));
  if (!rest_.empty() && !take("\r\n") && !take("\n")) fail();
  ++line_;
}

bool CSVReader::next() {
  while (!rest_.empty()) {
    readRecord();
    if (values_.size() > 1 || !values_.front().view().empty()) return true;
  }
  return false;
}
