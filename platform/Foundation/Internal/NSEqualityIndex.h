#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include <Foundation/Internal/NSKeyedHash.h>
#include <Foundation/NSObject.h>

/// Finds those of its members that may be equal to an object, in either direction: by address if the class
/// inherits the equality of NSObject, by hash if the class declares that its hash agrees with its equality,
/// and otherwise one by one (see NSEquality). Holds no references to the members. For one thread at a time.
class NSEqualityIndex {
 public:
  /// Adds a member in constant time on average.
  void add(const NSObject& member) {
    if (member.equality() == NSEquality::custom)
      custom_.push_back(&member);
    else
      keyed_.emplace(keyOf(member), &member);
  }

  /// Returns whether `equal(member)` is true for one of the members that may be equal to the object.
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
  /// A class may override only the hash, even with one that changes; its objects are still equal only to
  /// themselves.
  static std::size_t keyOf(const NSObject& object) {
    return NSKeyedHashOf(object.equality() == NSEquality::identity ? std::hash<const NSObject*>()(&object)
                                                                   : object.hash());
  }

  std::unordered_multimap<std::size_t, const NSObject*> keyed_;
  std::vector<const NSObject*> custom_;
};
