#pragma once

#include <cstddef>
#include <iterator>

#include <Foundation/NSObject.h>

/// What the collections have in common: their elements can be walked in the collection's order, by a range
/// for loop. A change of the collection during the walk raises the generic exception at the next step.
/// Hosts derive collections of their own from it.
class NS_EXPORT NSFastEnumeration : public NSObject::Subclass<NSFastEnumeration> {
 public:
  /// The number of elements at this moment.
  virtual std::size_t count() const = 0;

  /// One pass over a collection, which it does not share in and which must outlive it. Comparing it with the
  /// end raises the generic exception when the collection has changed since the walk began.
  class Iterator {
   public:
    /// What the algorithms of the standard library ask of an input iterator.
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

  /// The walk, for a range for loop.
  ///@{
  Iterator begin() const { return Iterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  ///@}

 protected:
  /// An object below `count`, in the order of the walk.
  virtual NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const = 0;
  /// A number that differs after each change; a fixed collection keeps it.
  virtual std::size_t changes() const noexcept { return 0; }

 private:
  [[noreturn]] void raiseMutation() const;
};
