#pragma once

#include <initializer_list>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSOrderedTable.h>
#include <Foundation/NSString.h>

class NSMutableSet;

/// Objects of which no two are equal, enumerated in the order in which they were inserted. Immutable, so that
/// any number of threads may use one at once.
class NS_EXPORT NSSet : public NSFastEnumeration::Subclass<NSSet> {
 public:
  /// Returns an empty set, or a set of the objects, keeping the first of equal ones. Nil among them raises
  /// the invalid-argument exception.
  ///@{
  static NSRef<NSSet> set();
  static NSRef<NSSet> setWithObjects(std::initializer_list<NSObjectArg> objects);
  ///@}

  /// Returns the number of objects, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Returns whether an object of the set equals the given one; false for nil. Takes constant time on
  /// average.
  bool containsObject(NSObjectArg object) const { return table_.indexOf(object.get()).has_value(); }

  /// Sets are equal if they have the same number of objects and each object equals one in the other set, in
  /// any order. The hash is the count. The description is the objects' descriptions, in braces and separated
  /// by ", ".
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As in NSObject; the objects are shared, not copied.
  ///@{
  NSRef<NSSet> copy() const { return fixedCopy(); }
  NSRef<NSMutableSet> mutableCopy() const;
  ///@}

 protected:
  /// What immutable and mutable sets share: creation, copying and enumeration.
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

/// A mutable set, changed in place. For one thread at a time.
class NS_EXPORT NSMutableSet : public NSSet::Subclass<NSMutableSet> {
 public:
  /// As in NSSet, but always returns a new one.
  ///@{
  static NSRef<NSMutableSet> set() { return alloc(); }
  static NSRef<NSMutableSet> setWithObjects(std::initializer_list<NSObjectArg> objects);
  ///@}

  /// Adds the object; if the set already has an equal one, that one stays. Nil raises the invalid-argument
  /// exception.
  void addObject(NSObjectArg object);
  /// Removes the object that equals the given one, or all objects. Removes nothing for nil or if none is
  /// equal. Linear.
  ///@{
  void removeObject(NSObjectArg object);
  void removeAllObjects();
  ///@}

  /// Returns an immutable set of the current objects.
  NSRef<NSSet> copy() const { return fixedCopy(); }

 protected:
  /// How a mutable set is created and copied, and how an enumeration notices a change.
  ///@{
  NSMutableSet() = default;
  explicit NSMutableSet(const NSOrderedTable& table) : NSSet::Subclass<NSMutableSet>(table) {}
  NSRef<NSSet> fixedCopy() const override { return NSSet::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  std::size_t changes_ = 0;
};
