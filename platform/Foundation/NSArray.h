#pragma once

#include <functional>
#include <initializer_list>
#include <limits>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSStorage.h>
#include <Foundation/NSString.h>

class NSMutableArray;

/// What a search answers when there is nothing to find.
inline constexpr std::size_t NSNotFound = (std::numeric_limits<std::size_t>::max)();

/// An ordered list of objects. Equality of elements is value equality, asked of the element in the list.
/// Fixed, so that any number of threads may use one at once.
class NS_EXPORT NSArray : public NSFastEnumeration::Subclass<NSArray> {
 public:
  /// A list of no objects, of one, of several, or of those in another list, which is shared when it is
  /// fixed. Nil among the objects raises the invalid-argument exception.
  ///@{
  static NSRef<NSArray> array();
  static NSRef<NSArray> arrayWithObject(NSObjectArg object) { return arrayWithObjects({object}); }
  static NSRef<NSArray> arrayWithObjects(std::initializer_list<NSObjectArg> objects);
  static NSRef<NSArray> arrayWithArray(const NSRef<NSArray>& array) { return array->copy(); }
  ///@}

  /// The number of elements, in constant time.
  std::size_t count() const override { return storage_.count(); }
  /// Raises the range exception from `count` on.
  NSRef<NSObject> objectAtIndex(std::size_t index) const;
  /// Absent when the list is empty.
  ///@{
  NSRefPtr<NSObject> firstObject() const {
    return count() ? NSRefPtr<NSObject>(storage_.units().front()) : nullptr;
  }
  NSRefPtr<NSObject> lastObject() const {
    return count() ? NSRefPtr<NSObject>(storage_.units().back()) : nullptr;
  }
  ///@}
  /// Whether an element equals the object; which is the first that does, or NSNotFound. Linear.
  ///@{
  bool containsObject(NSObjectArg object) const { return indexOfObject(object) != NSNotFound; }
  std::size_t indexOfObject(NSObjectArg object) const;
  ///@}

  /// Calls `each(element, index, stop)` in order until it sets `*stop`; raises the generic exception when
  /// the list changes meanwhile.
  template <class Each>
  void enumerateObjectsUsingBlock(Each&& each) const {
    bool stop = false;
    std::size_t index = 0;
    for (const NSRef<NSObject> element : *this) {
      std::invoke(each, element, index++, &stop);
      if (stop) return;
    }
  }

  /// The elements' descriptions, a text's being itself, with the separator between neighbours.
  NSRef<NSString> componentsJoinedByString(NSStringArg separator) const;

  /// Equal is a list of as many elements, each equal to the one in its place. The hash is the count. The
  /// description is that of the elements, in parentheses, with ", " between neighbours.
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As NSObject's; the elements are shared, not copied.
  ///@{
  NSRef<NSArray> copy() const { return fixedCopy(); }
  NSRef<NSMutableArray> mutableCopy() const;
  ///@}

 protected:
  /// What lists and growable lists share: how they are made, copied and walked. The storage holds a
  /// reference to each element.
  ///@{
  explicit NSArray(NSTail tail) : storage_(tail) {}
  ~NSArray() override;

  virtual NSRef<NSArray> fixedCopy() const { return const_cast<NSArray&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override {
    return *storage_.units()[index];
  }

  static void appendRetained(const NSArray& from, NSArray& to);

  NSStorage<NSObject*> storage_;
  ///@}
};

/// A list that grows, and is changed in place. For one thread at a time.
class NS_EXPORT NSMutableArray : public NSArray::Subclass<NSMutableArray> {
 public:
  /// A new list, empty or of the objects, with room for `capacity` in its own block. Nil among the objects
  /// raises the invalid-argument exception.
  ///@{
  static NSRef<NSMutableArray> array() { return arrayWithCapacity(0); }
  static NSRef<NSMutableArray> arrayWithCapacity(std::size_t capacity);
  static NSRef<NSMutableArray> arrayWithObjects(std::initializer_list<NSObjectArg> objects);
  static NSRef<NSMutableArray> arrayWithArray(const NSRef<NSArray>& array) { return array->mutableCopy(); }
  ///@}

  /// Nil raises the invalid-argument exception, an index beyond the list the range exception, as does
  /// taking the last object of none; the list is then as it was. An object may be inserted at `count`.
  /// Adding takes constant time on average, inserting and removing move all that comes after.
  ///@{
  void addObject(NSObjectArg object);
  void addObjectsFromArray(const NSRef<NSArray>& objects);
  void insertObject(NSObjectArg object, std::size_t atIndex);
  void replaceObjectAtIndex(std::size_t index, NSObjectArg withObject);
  void removeObjectAtIndex(std::size_t index);
  void removeLastObject();
  void removeAllObjects();
  ///@}
  /// Removes every element that equals the object.
  void removeObject(NSObjectArg object);
  /// Removes every element that equals one of the objects; absent objects remove nothing. The cost grows
  /// with the sum of both counts where NSEquality allows it, else with the product.
  void removeObjectsInArray(const NSRefPtr<NSArray>& objects);

  /// A fixed list of the elements at this moment.
  NSRef<NSArray> copy() const { return fixedCopy(); }

 protected:
  /// How a growable list is made and copied, and how a walk sees that it changed.
  ///@{
  explicit NSMutableArray(NSTail tail) : NSArray::Subclass<NSMutableArray>(tail) {}
  NSRef<NSArray> fixedCopy() const override;
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  template <class Unwanted>
  void removeObjectsWhere(Unwanted&& unwanted);

  std::size_t changes_ = 0;
};
