#pragma once

#include <cstddef>
#include <iterator>

#include <Foundation/NSObject.h>

/// The common base of the collections: a range-based for loop enumerates the elements in the collection's
/// order. Changing the collection during the enumeration raises the generic exception at the next step. Hosts
/// derive their own collections from it.
class NS_EXPORT NSFastEnumeration : public NSObject::Subclass<NSFastEnumeration> {
 public:
  /// Returns the current number of elements.
  virtual std::size_t count() const = 0;

  /// One pass over a collection, to which it holds no reference and which must outlive it. Comparing it with
  /// the end raises the generic exception if the collection has changed since the enumeration began.
  class Iterator {
   public:
    /// What the algorithms of the standard library require of an input iterator.
    ///@{
    using iterator_category = std::input_iterator_tag;
    using value_type = NSRef<NSObject>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = NSRef<NSObject>;

    explicit Iterator(const NSFastEnumeration& collection)
        : collection_(&collection), changes_(collection.changes()) {}
    NSRef<NSObject> operator*() const { return collection_->enumeratedObjectAtIndex(index_); }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    void operator++(int) { ++index_; }
    bool operator==(std::default_sentinel_t) const {
      if (collection_->changes() != changes_) collection_->raiseMutation();
      return index_ >= collection_->count();
    }
    ///@}

   private:
    const NSFastEnumeration* collection_;
    std::size_t changes_;
    std::size_t index_ = 0;
  };

  /// Begin and end of the enumeration, for a range-based for loop.
  ///@{
  Iterator begin() const { return Iterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  ///@}

 protected:
  /// Returns the object at `index`, which is less than `count`, in the order of enumeration.
  virtual NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const = 0;
  /// Returns a number that differs after each change; an immutable collection always returns the same one.
  virtual std::size_t changes() const noexcept { return 0; }

 private:
  [[noreturn]] void raiseMutation() const;
};
