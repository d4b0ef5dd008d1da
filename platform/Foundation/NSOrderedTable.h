#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <Foundation/NSObject.h>

/// Objects in the order in which they were put in, found by hash and value equality: what sets and
/// dictionaries are made of. Looking up and putting in take constant time, taking out is linear.
class NS_EXPORT NSOrderedTable {
 public:
  /// A key and what is kept for it.
  struct Row {
    NSRef<NSObject> key;       ///< different from all others
    NSRefPtr<NSObject> value;  ///< absent in a set
    std::size_t hash;          ///< the key's, as it was when it was put in
  };

  /// All rows, in order; until the next change.
  const std::vector<Row>& rows() const noexcept { return rows_; }
  /// The row whose key equals `key`: asks the key in the table.
  std::optional<std::size_t> indexOf(const NSRefPtr<NSObject>& key) const;
  /// Replaces the value where the key is there, which keeps its place; else adds a row at the end.
  void put(const NSRef<NSObject>& key, const NSRefPtr<NSObject>& value);
  /// Take out the row at an index, which must be one, or all of them.
  ///@{
  void removeAt(std::size_t index);
  void removeAll();
  ///@}

 private:
  std::optional<std::size_t> indexOf(const NSRefPtr<NSObject>& key, std::size_t hash) const;
  void enter(std::size_t row);
  void rebuild(std::size_t slots);

  std::vector<Row> rows_;
  std::vector<std::size_t> slots_;  // a row's number plus 1, or 0; a power of two of them
};
