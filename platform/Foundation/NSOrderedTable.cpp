#include <Foundation/NSOrderedTable.h>

#include <Foundation/Internal/NSKeyedHash.h>

std::optional<std::size_t> NSOrderedTable::indexOf(const NSRefPtr<NSObject>& key) const {
  if (!key || rows_.empty()) return std::nullopt;
  return indexOf(key, NSKeyedHashOf(key->hash()));
}

std::optional<std::size_t> NSOrderedTable::indexOf(const NSRefPtr<NSObject>& key, std::size_t hash) const {
  if (slots_.empty()) return std::nullopt;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = hash & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
    const Row& row = rows_[slots_[slot] - 1];
    if (row.hash == hash && (row.key == key || row.key->isEqual(key))) return slots_[slot] - 1;
  }
  return std::nullopt;
}

void NSOrderedTable::put(const NSRef<NSObject>& key, const NSRefPtr<NSObject>& value) {
  const std::size_t hash = NSKeyedHashOf(key->hash());
  if (const auto index = indexOf(key, hash)) {
    const NSRefPtr<NSObject> replaced = std::exchange(rows_[*index].value, value);
    return;
  }
  if (slots_.size() < 2 * (rows_.size() + 1)) rebuild(slots_.empty() ? 8 : 2 * slots_.size());
  rows_.push_back({key, value, hash});
  enter(rows_.size() - 1);
}

void NSOrderedTable::removeAt(std::size_t index) {
  const Row removed = rows_[index];
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(index));
  rebuild(slots_.size());
}

void NSOrderedTable::removeAll() {
  const std::vector<Row> removed = std::move(rows_);
  rows_.clear();
  slots_.clear();
}

void NSOrderedTable::enter(std::size_t row) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = rows_[row].hash & mask;
  while (slots_[slot] != 0) slot = (slot + 1) & mask;
  slots_[slot] = row + 1;
}

void NSOrderedTable::rebuild(std::size_t slots) {
  slots_.assign(slots, 0);
  for (std::size_t row = 0; row < rows_.size(); ++row) enter(row);
}
