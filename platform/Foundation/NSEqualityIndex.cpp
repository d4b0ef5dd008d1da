#include <Foundation/NSEqualityIndex.h>

void NSEqualityIndex::add(const NSObject& member) {
  if (member.equality() == NSEquality::custom) {
    custom_.push_back(&member);
    return;
  }
  makeRoom();
  const std::size_t hash = member.hash();
  std::size_t& last = slots_[slotFor(hash)];
  if (last == none) ++hashes_;
  members_.push_back({&member, hash, last});
  last = members_.size() - 1;
}

// The slot of the hash, or the free one where it belongs.
std::size_t NSEqualityIndex::slotFor(std::size_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  // Addresses differ in their middle bits; the multiplication spreads those.
  const std::size_t spread = hash * 0x9E3779B97F4A7C15U;
  for (std::size_t slot = (spread >> 32) & mask;; slot = (slot + 1) & mask) {
    const std::size_t last = slots_[slot];
    if (last == none || members_[last].hash == hash) return slot;
  }
}

void NSEqualityIndex::makeRoom() {
  if (slots_.size() > 2 * hashes_) return;
  const std::vector<std::size_t> old =
      std::exchange(slots_, std::vector<std::size_t>(slots_.empty() ? 16 : 2 * slots_.size(), none));
  for (const std::size_t last : old)
    if (last != none) slots_[slotFor(members_[last].hash)] = last;
}
