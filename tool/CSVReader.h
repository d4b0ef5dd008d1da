#pragma once

#include <string_view>
#include <vector>

#include "tool/SecretText.h"

/// Reads comma-separated values (RFC 4180) that may hold secrets, in lines that end with or without a
/// carriage return.
class CSVReader {
 public:
  /// The text must outlive the reader; a byte-order mark at its start is not part of the values.
  explicit CSVReader(std::string_view text);

  /// Reads the next record, leaving out empty lines; returns false at the end. Throws Failure if a quotation
  /// mark is where none may be, or missing.
  bool next();
  /// Returns the values of the record that was read last.
  const std::vector<SecretText>& values() const { return values_; }

  /// Throws Failure with the line in which that record starts.
  [[noreturn]] void fail() const;

 private:
  bool take(std::string_view expected);
  std::string_view takeUntil(std::string_view characters);
  void readRecord();
  SecretText value();

  std::string_view rest_;
  std::size_t line_ = 1;    // the one that comes next
  std::size_t record_ = 1;  // the first of the record
  std::vector<SecretText> values_;
};
