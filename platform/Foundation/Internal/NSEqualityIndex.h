#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include <Foundation/NSObject.h>

/// Finds, among its members, those that may be equal to an object, in either direction: by address where the
/// class keeps the root's equality, by hash where the class says that its hash agrees with its equality, and
/// otherwise one by one (see NSEquality). It holds no reference to the members. For one thread at a time.
class NSEqualityIndex {
 public:
  /// Takes constant time on average.
  void add(const NSObject& member) {
    if (member.equality() == NSEquality::custom)
      custom_.push_back(&member);
    else
      keyed_.emplace(keyOf(member), &member);
  }

  /// Whether `equal(member)` holds for one of the members that may be equal to the object.
  template <class Equal>
  bool containsOne(const NSObject& object, Equal&& equal) const {
    const bool comparesWithAll = object.equality() == NSEquality::custom;
    const auto [first, last] =
        comparesWithAll ? std::pair(keyed_.begin(), keyed_.end()) : keyed_.equal_range(keyOf(object));
    for (auto each = first; each != last; ++each)
      if (equal(*each->second)) return true;
    for (const NSObject* member : custom_)
      if (equal(*member)) return true;
    return false;
  }

 private:
  /// A class may override the hash alone, even with one that changes; its objects are still only equal to
  /// themselves.
  static std::size_t keyOf(const NSObject& object) {
    return object.equality() == NSEquality::identity ? std::hash<const NSObject*>()(&object) : object.hash();
  }

  std::unordered_multimap<std::size_t, const NSObject*> keyed_;
  std::vector<const NSObject*> custom_;
};
