#pragma once

#include <functional>
#include <initializer_list>
#include <limits>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSStorage.h>
#include <Foundation/NSString.h>

class NSMutableArray;

/// What a search answers when there is nothing to find.
inline constexpr std::size_t NSNotFound = std::numeric_limits<std::size_t>::max();

/// An ordered list of objects. Equality of elements is value equality, asked of the element in the list.
/// Fixed, so that any number of threads may use one at once.
class FOUNDATION_EXPORT NSArray : public NSFastEnumeration::Subclass<NSArray> {
 public:
  static Ref<NSArray> array();
  static Ref<NSArray> arrayWithObject(Object object) { return arrayWithObjects({object}); }
  /// Nil among the objects raises the invalid-argument exception.
  static Ref<NSArray> arrayWithObjects(std::initializer_list<Object> objects);
  static Ref<NSArray> arrayWithArray(const Ref<NSArray>& array) { return array->copy(); }

  std::size_t count() const override { return storage_.count(); }
  /// Raises the range exception from `count` on.
  Ref<NSObject> objectAtIndex(std::size_t index) const;
  /// Absent when the list is empty.
  RefPtr<NSObject> firstObject() const {
    return count() ? RefPtr<NSObject>(storage_.units().front()) : nullptr;
  }
  RefPtr<NSObject> lastObject() const {
    return count() ? RefPtr<NSObject>(storage_.units().back()) : nullptr;
  }
  bool containsObject(Object object) const { return indexOfObject(object) != NSNotFound; }
  /// The first element that equals the object, or NSNotFound. Linear.
  std::size_t indexOfObject(Object object) const;

  /// Calls `each(element, index, stop)` in order until it sets `*stop`; raises the generic exception when
  /// the list changes meanwhile.
  template <class Each>
  void enumerateObjectsUsingBlock(Each&& each) const {
    bool stop = false;
    std::size_t index = 0;
    for (const Ref<NSObject> element : *this) {
      std::invoke(each, element, index++, &stop);
      if (stop) return;
    }
  }

  /// The elements' descriptions, a text's being itself, with the separator between neighbours.
  Ref<NSString> componentsJoinedByString(Text separator) const;

  bool isEqual(const RefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  Ref<NSString> description() const override;
  Ref<NSArray> copy() const { return fixedCopy(); }
  Ref<NSMutableArray> mutableCopy() const;

 protected:
  template <class Self, class Base>
  friend class NSObjectLayer;

  explicit NSArray(NSTail tail) : storage_(tail) {}
  ~NSArray() override;

  virtual Ref<NSArray> fixedCopy() const { return const_cast<NSArray&>(*this); }
  Ref<NSObject> copyObject() const override { return fixedCopy(); }
  Ref<NSObject> mutableCopyObject() const override;
  Ref<NSObject> enumeratedObjectAtIndex(std::size_t index) const override { return *storage_.units()[index]; }

  static void appendRetained(const NSArray& from, NSArray& to);

  // The list holds a reference to each of these.
  NSStorage<NSObject*> storage_;
};

/// A list that grows, and is changed in place. For one thread at a time.
class FOUNDATION_EXPORT NSMutableArray : public NSArray::Subclass<NSMutableArray> {
 public:
  static Ref<NSMutableArray> array() { return arrayWithCapacity(0); }
  static Ref<NSMutableArray> arrayWithCapacity(std::size_t capacity);
  static Ref<NSMutableArray> arrayWithObjects(std::initializer_list<Object> objects);
  static Ref<NSMutableArray> arrayWithArray(const Ref<NSArray>& array) { return array->mutableCopy(); }

  /// Nil raises the invalid-argument exception, an index beyond the list the range exception; the list is
  /// then as it was. The same holds for all that follow.
  void addObject(Object object);
  void addObjectsFromArray(const Ref<NSArray>& objects);
  void insertObject(Object object, std::size_t atIndex);
  void replaceObjectAtIndex(std::size_t index, Object withObject);
  void removeObjectAtIndex(std::size_t index);
  void removeLastObject();
  void removeAllObjects();
  /// Removes every element that equals the object.
  void removeObject(Object object);
  /// Removes every element that equals one of the objects; absent objects remove nothing.
  void removeObjectsInArray(const RefPtr<NSArray>& objects);

  Ref<NSArray> copy() const { return fixedCopy(); }

 protected:
  template <class Self, class Base>
  friend class NSObjectLayer;

  explicit NSMutableArray(NSTail tail) : NSArray::Subclass<NSMutableArray>(tail) {}
  Ref<NSArray> fixedCopy() const override;
  std::size_t changes() const noexcept override { return changes_; }

 private:
  template <class Unwanted>
  void removeObjectsWhere(Unwanted&& unwanted);

  std::size_t changes_ = 0;
};
