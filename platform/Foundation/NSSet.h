#pragma once

#include <initializer_list>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSOrderedTable.h>
#include <Foundation/NSString.h>

class NSMutableSet;

/// Objects of which no two are equal, walked in the order in which they were put in. Fixed, so that any
/// number of threads may use one at once.
class NS_EXPORT NSSet : public NSFastEnumeration::Subclass<NSSet> {
 public:
  /// A set of none, or of the objects, of equal ones the first. Nil among them raises the invalid-argument
  /// exception.
  ///@{
  static NSRef<NSSet> set();
  static NSRef<NSSet> setWithObjects(std::initializer_list<NSObjectArg> objects);
  ///@}

  /// The number of objects, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Whether an object of the set equals this one; nil none does. Takes constant time on average.
  bool containsObject(NSObjectArg object) const { return table_.indexOf(object.get()).has_value(); }

  /// Equal is a set of as many objects, each equal to one of these, in any order. The hash is the count. The
  /// description is that of the objects, in braces, with ", " between neighbours.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As NSObject's; the objects are shared, not copied.
  ///@{
  NSRef<NSSet> copy() const { return fixedCopy(); }
  NSRef<NSMutableSet> mutableCopy() const;
  ///@}

 protected:
  /// What both kinds share: how they are made, copied and walked.
  ///@{
  NSSet() = default;
  explicit NSSet(const NSOrderedTable& table) : table_(table) {}
  virtual NSRef<NSSet> fixedCopy() const { return const_cast<NSSet&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override {
    return table_.rows()[index].key;
  }

  NSOrderedTable table_;
  ///@}
};

/// A set that is changed in place. For one thread at a time.
class NS_EXPORT NSMutableSet : public NSSet::Subclass<NSMutableSet> {
 public:
  /// As NSSet's, and always new.
  ///@{
  static NSRef<NSMutableSet> set() { return alloc(); }
  static NSRef<NSMutableSet> setWithObjects(std::initializer_list<NSObjectArg> objects);
  ///@}

  /// Nil raises the invalid-argument exception. Where the set has an equal object, that one stays.
  void addObject(NSObjectArg object);
  /// An object that is not there, or nil, removes nothing. Linear.
  ///@{
  void removeObject(NSObjectArg object);
  void removeAllObjects();
  ///@}

  /// A fixed set of the objects at this moment.
  NSRef<NSSet> copy() const { return fixedCopy(); }

 protected:
  /// How the growable kind is made and copied, and how a walk sees that it changed.
  ///@{
  NSMutableSet() = default;
  explicit NSMutableSet(const NSOrderedTable& table) : NSSet::Subclass<NSMutableSet>(table) {}
  NSRef<NSSet> fixedCopy() const override { return NSSet::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  std::size_t changes_ = 0;
};
