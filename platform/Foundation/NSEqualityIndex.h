#pragma once

#include <vector>

#include <Foundation/NSObject.h>

/// Finds, among its members, those that may be equal to an object, in either direction: the ones with its
/// hash where both classes say what their hashes are worth (see NSEquality), and one by one the rest. It
/// holds no share in the members, whose hashes must not change meanwhile. For one thread at a time.
class NSEqualityIndex {
 public:
  /// Takes constant time, as long as members with different hashes outnumber those with the same.
  void add(const NSObject& member);

  /// Whether `equal(member)` holds for one of the members that may be equal to the object.
  template <class Equal>
  bool containsOne(const NSObject& object, Equal&& equal) const {
    if (object.equality() == NSEquality::custom) return anyOfAll(equal);
    return anyOfHash(object, equal) || anyOfCustom(equal);
  }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  struct Member {
    const NSObject* object;
    std::size_t hash;
    std::size_t next;  // the one before it with the same hash
  };

  template <class Equal>
  bool anyOfHash(const NSObject& object, Equal& equal) const {
    if (members_.empty()) return false;
    for (std::size_t i = slots_[slotFor(object.hash())]; i != none; i = members_[i].next)
      if (equal(*members_[i].object)) return true;
    return false;
  }

  template <class Equal>
  bool anyOfCustom(Equal& equal) const {
    for (const NSObject* member : custom_)
      if (equal(*member)) return true;
    return false;
  }

  template <class Equal>
  bool anyOfAll(Equal& equal) const {
    for (const Member& member : members_)
      if (equal(*member.object)) return true;
    return anyOfCustom(equal);
  }

  std::size_t slotFor(std::size_t hash) const;
  void makeRoom();

  std::vector<Member> members_;     // those whose hash is worth something
  std::vector<std::size_t> slots_;  // the last member of each hash; a power of two of them, or empty
  std::vector<const NSObject*> custom_;
  std::size_t hashes_ = 0;
};
