#pragma once

#include <functional>
#include <initializer_list>
#include <limits>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSStorage.h>
#include <Foundation/NSString.h>

class NSMutableArray;

/// What a search returns when it finds nothing.
inline constexpr std::size_t NSNotFound = (std::numeric_limits<std::size_t>::max)();

/// An ordered collection of objects. Elements are compared by value, by calling isEqual of the element in the
/// array. Immutable, so that any number of threads may use one at once.
class NS_EXPORT NSArray : public NSFastEnumeration::Subclass<NSArray> {
 public:
  /// Returns an array of no objects, of one, of several, or of those in another array, which is itself
  /// returned if it is immutable. Nil among the objects raises the invalid-argument exception.
  ///@{
  static NSRef<NSArray> array();
  static NSRef<NSArray> arrayWithObject(NSObjectArg object) { return arrayWithObjects({object}); }
  static NSRef<NSArray> arrayWithObjects(std::initializer_list<NSObjectArg> objects);
  static NSRef<NSArray> arrayWithArray(const NSRef<NSArray>& array) { return array->copy(); }
  ///@}

  /// Returns the number of elements, in constant time.
  std::size_t count() const override { return storage_.count(); }
  /// Returns the element at `index`. Raises the range exception if `index` is not less than `count`.
  NSRef<NSObject> objectAtIndex(std::size_t index) const;
  /// Returns the first or the last element, or nil if the array is empty.
  ///@{
  NSRefPtr<NSObject> firstObject() const {
    return count() ? NSRefPtr<NSObject>(storage_.units().front()) : nullptr;
  }
  NSRefPtr<NSObject> lastObject() const {
    return count() ? NSRefPtr<NSObject>(storage_.units().back()) : nullptr;
  }
  ///@}
  /// Returns whether an element equals the object, and the index of the first that does, or NSNotFound.
  /// Linear.
  ///@{
  bool containsObject(NSObjectArg object) const { return indexOfObject(object) != NSNotFound; }
  std::size_t indexOfObject(NSObjectArg object) const;
  ///@}

  /// Calls `each(element, index, stop)` in order until it sets `*stop`. Raises the generic exception if the
  /// array changes during the enumeration.
  template <class Each>
  void enumerateObjectsUsingBlock(Each&& each) const {
    bool stop = false;
    std::size_t index = 0;
    for (const NSRef<NSObject> element : *this) {
      std::invoke(each, element, index++, &stop);
      if (stop) return;
    }
  }

  /// Returns the elements' descriptions, joined by the separator. The description of a string is the string
  /// itself.
  NSRef<NSString> componentsJoinedByString(NSStringArg separator) const;

  /// Arrays are equal if they have the same number of elements and each element equals the one at the same
  /// index. The hash is the count. The description is the elements' descriptions, in parentheses and
  /// separated by ", ".
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As in NSObject; the elements are shared, not copied.
  ///@{
  NSRef<NSArray> copy() const { return fixedCopy(); }
  NSRef<NSMutableArray> mutableCopy() const;
  ///@}

 protected:
  /// What immutable and mutable arrays share: creation, copying and enumeration. The storage holds a
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

/// A mutable array, changed in place. For one thread at a time.
class NS_EXPORT NSMutableArray : public NSArray::Subclass<NSMutableArray> {
 public:
  /// Returns a new array, empty or of the objects, with room for `capacity` objects in its own block. Nil
  /// among the objects raises the invalid-argument exception.
  ///@{
  static NSRef<NSMutableArray> array() { return arrayWithCapacity(0); }
  static NSRef<NSMutableArray> arrayWithCapacity(std::size_t capacity);
  static NSRef<NSMutableArray> arrayWithObjects(std::initializer_list<NSObjectArg> objects);
  static NSRef<NSMutableArray> arrayWithArray(const NSRef<NSArray>& array) { return array->mutableCopy(); }
  ///@}

  /// Adds, inserts, replaces or removes objects. Nil raises the invalid-argument exception; an index beyond
  /// the end, or removing the last object of an empty array, raises the range exception. The array is then
  /// unchanged. An object may be inserted at `count`. Adding takes constant time on average; inserting and
  /// removing move all later elements.
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
  /// Removes every element that equals one of the objects; nil removes nothing. The cost grows with the sum
  /// of both counts where NSEquality allows it, otherwise with their product.
  void removeObjectsInArray(const NSRefPtr<NSArray>& objects);

  /// Returns an immutable array of the current elements.
  NSRef<NSArray> copy() const { return fixedCopy(); }

 protected:
  /// How a mutable array is created and copied, and how an enumeration notices a change.
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
