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
  static Ref<NSSet> set();
  /// Nil among the objects raises the invalid-argument exception.
  static Ref<NSSet> setWithObjects(std::initializer_list<Object> objects);

  std::size_t count() const override { return table_.rows().size(); }
  bool containsObject(Object object) const { return table_.indexOf(object.get()).has_value(); }

  bool isEqual(const RefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  Ref<NSString> description() const override;
  Ref<NSSet> copy() const { return fixedCopy(); }
  Ref<NSMutableSet> mutableCopy() const;

 protected:
  template <class Self>
  friend class NSAllocated;

  NSSet() = default;
  explicit NSSet(const NSOrderedTable& table) : table_(table) {}
  virtual Ref<NSSet> fixedCopy() const { return const_cast<NSSet&>(*this); }
  Ref<NSObject> copyObject() const override { return fixedCopy(); }
  Ref<NSObject> mutableCopyObject() const override;
  Ref<NSObject> enumeratedObjectAtIndex(std::size_t index) const override { return table_.rows()[index].key; }

  NSOrderedTable table_;
};

/// A set that is changed in place. For one thread at a time.
class FOUNDATION_EXPORT NSMutableSet : public NSSet::Subclass<NSMutableSet> {
 public:
  static Ref<NSMutableSet> set() { return alloc(); }
  static Ref<NSMutableSet> setWithObjects(std::initializer_list<Object> objects);

  /// Nil raises the invalid-argument exception.
  void addObject(Object object);
  void removeObject(Object object);
  void removeAllObjects();

  Ref<NSSet> copy() const { return fixedCopy(); }

 protected:
  template <class Self>
  friend class NSAllocated;
  friend class NSSet;

  NSMutableSet() = default;
  explicit NSMutableSet(const NSOrderedTable& table) : NSSet::Subclass<NSMutableSet>(table) {}
  Ref<NSSet> fixedCopy() const override { return NSSet::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }

 private:
  std::size_t changes_ = 0;
};
