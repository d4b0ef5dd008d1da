#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <Foundation/NSObject.h>

/// Objects in the order in which they were inserted, found by hash and value equality: what sets and
/// dictionaries are built on. Looking up and inserting take constant time, removing takes linear time.
class NS_EXPORT NSOrderedTable {
 public:
  /// A key and its value.
  struct Row {
    NSRef<NSObject> key;       ///< not equal to any other
    NSRefPtr<NSObject> value;  ///< nil in a set
    std::size_t hash;          ///< of the key's hash when it was inserted, keyed for this process
  };

  /// Returns all rows, in order; valid until the next change.
  const std::vector<Row>& rows() const noexcept { return rows_; }
  /// Returns the index of the row whose key equals `key`, by calling isEqual of the key in the table.
  std::optional<std::size_t> indexOf(const NSRefPtr<NSObject>& key) const;
  /// Replaces the value of an existing key, which keeps its place; otherwise adds a row at the end.
  void put(const NSRef<NSObject>& key, const NSRefPtr<NSObject>& value);
  /// Removes the row at an index, which must exist, or all of them.
  ///@{
  void removeAt(std::size_t index);
  void removeAll();
  ///@}

 private:
  std::optional<std::size_t> indexOf(const NSRefPtr<NSObject>& key, std::size_t hash) const;
  void enter(std::size_t row);
  void rebuild(std::size_t slots);

  std::vector<Row> rows_;
  std::vector<std::size_t> slots_;  // a row's index plus 1, or 0; a power of two in number
};
