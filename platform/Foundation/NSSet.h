#pragma once

#include <initializer_list>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSOrderedTable.h>
#include <Foundation/NSString.h>

class NSMutableSet;

/// Objects of which no two are equal, walked in the order in which they were put in. Fixed, so that any
/// number of threads may use one at once.
class FOUNDATION_EXPORT NSSet : public NSFastEnumeration::Subclass<NSSet> {
 public:
  /// A set of none, or of the objects, of equal ones the first. Nil among them raises the invalid-argument
  /// exception.
  ///@{
  static Ref<NSSet> set();
  static Ref<NSSet> setWithObjects(std::initializer_list<Object> objects);
  ///@}

  /// The number of objects, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Whether an object of the set equals this one; nil none does. Takes constant time on average.
  bool containsObject(Object object) const { return table_.indexOf(object.get()).has_value(); }

  /// Equal is a set of as many objects, each equal to one of these, in any order. The hash is the count. The
  /// description is that of the objects, in braces, with ", " between neighbours.
  ///@{
  bool isEqual(const RefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  Ref<NSString> description() const override;
  ///@}
  /// As NSObject's; the objects are shared, not copied.
  ///@{
  Ref<NSSet> copy() const { return fixedCopy(); }
  Ref<NSMutableSet> mutableCopy() const;
  ///@}

 protected:
  template <class Self>
  friend class NSAllocated;

  /// What both kinds share: how they are made, copied and walked.
  ///@{
  NSSet() = default;
  explicit NSSet(const NSOrderedTable& table) : table_(table) {}
  virtual Ref<NSSet> fixedCopy() const { return const_cast<NSSet&>(*this); }
  Ref<NSObject> copyObject() const override { return fixedCopy(); }
  Ref<NSObject> mutableCopyObject() const override;
  Ref<NSObject> enumeratedObjectAtIndex(std::size_t index) const override { return table_.rows()[index].key; }

  NSOrderedTable table_;
  ///@}
};

/// A set that is changed in place. For one thread at a time.
class FOUNDATION_EXPORT NSMutableSet : public NSSet::Subclass<NSMutableSet> {
 public:
  /// As NSSet's, and always new.
  ///@{
  static Ref<NSMutableSet> set() { return alloc(); }
  static Ref<NSMutableSet> setWithObjects(std::initializer_list<Object> objects);
  ///@}

  /// Nil raises the invalid-argument exception. Where the set has an equal object, that one stays.
  void addObject(Object object);
  /// An object that is not there, or nil, removes nothing. Linear.
  ///@{
  void removeObject(Object object);
  void removeAllObjects();
  ///@}

  /// A fixed set of the objects at this moment.
  Ref<NSSet> copy() const { return fixedCopy(); }

 protected:
  template <class Self>
  friend class NSAllocated;
  friend class NSSet;

  /// How the growable kind is made and copied, and how a walk sees that it changed.
  ///@{
  NSMutableSet() = default;
  explicit NSMutableSet(const NSOrderedTable& table) : NSSet::Subclass<NSMutableSet>(table) {}
  Ref<NSSet> fixedCopy() const override { return NSSet::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  std::size_t changes_ = 0;
};
