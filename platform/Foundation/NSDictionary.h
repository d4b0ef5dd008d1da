#pragma once

#include <functional>
#include <initializer_list>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSOrderedTable.h>
#include <Foundation/NSString.h>

class NSArray;
class NSMutableDictionary;

/// Objects by key, kept in the order in which the keys were inserted, which is the order of enumeration. Keys
/// are copied and compared by value. Immutable, so that any number of threads may use one at once.
class NS_EXPORT NSDictionary : public NSFastEnumeration::Subclass<NSDictionary> {
 public:
  /// One pair that a factory takes, in the order of the factory's name.
  struct ObjectAndKey {
    NSObjectArg object;  ///< the object that is kept
    NSObjectArg key;     ///< the key that finds it, copied
  };

  /// Returns a dictionary of no pairs, of one, or of several. Nil raises the invalid-argument exception; if a
  /// key is given twice, the last object counts.
  ///@{
  static NSRef<NSDictionary> dictionary();
  static NSRef<NSDictionary> dictionaryWithObject(NSObjectArg object, NSObjectArg forKey);
  static NSRef<NSDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// Returns the number of keys, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Returns the object for the key, or nil if there is none or the key is nil. Takes constant time on
  /// average.
  NSRefPtr<NSObject> objectForKey(NSObjectArg key) const;
  /// Returns the keys, or the objects, in a new array, in the order of enumeration.
  ///@{
  NSRef<NSArray> allKeys() const;
  NSRef<NSArray> allValues() const;
  ///@}

  /// Calls `each(key, object, stop)` in order until it sets `*stop`. Raises the generic exception if the
  /// dictionary changes during the enumeration.
  template <class Each>
  void enumerateKeysAndObjectsUsingBlock(Each&& each) const {
    bool stop = false;
    std::size_t index = 0;
    for (const NSRef<NSObject> key : *this) {
      const NSRef<NSObject> object = table_.rows()[index++].value;
      std::invoke(each, key, object, &stop);
      if (stop) return;
    }
  }

  /// Dictionaries are equal if they have the same number of keys and an equal object for each key, in any
  /// order. The hash is the count. The description is "{key = object; key = object}".
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As in NSObject; keys and objects are shared, not copied.
  ///@{
  NSRef<NSDictionary> copy() const { return fixedCopy(); }
  NSRef<NSMutableDictionary> mutableCopy() const;
  ///@}

 protected:
  /// What immutable and mutable dictionaries share: creation, copying and enumeration.
  ///@{
  NSDictionary() = default;
  explicit NSDictionary(const NSOrderedTable& table) : table_(table) {}
  virtual NSRef<NSDictionary> fixedCopy() const { return const_cast<NSDictionary&>(*this); }
  NSRef<NSObject> copyObject() const override { return fixedCopy(); }
  NSRef<NSObject> mutableCopyObject() const override;
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override {
    return table_.rows()[index].key;
  }

  NSOrderedTable table_;
  ///@}
};

/// A mutable dictionary, changed in place. For one thread at a time.
class NS_EXPORT NSMutableDictionary : public NSDictionary::Subclass<NSMutableDictionary> {
 public:
  /// As in NSDictionary, but always returns a new one.
  ///@{
  static NSRef<NSMutableDictionary> dictionary() { return alloc(); }
  static NSRef<NSMutableDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// Sets the object for the key. Nil as object or key raises the invalid-argument exception and leaves the
  /// dictionary unchanged. An existing key keeps its place.
  void setObject(NSObjectArg object, NSObjectArg forKey);
  /// Removes a key with its object, or all of them. A missing or nil key removes nothing. Linear.
  ///@{
  void removeObjectForKey(NSObjectArg key);
  void removeAllObjects();
  ///@}

  /// Returns an immutable dictionary of the current keys and objects.
  NSRef<NSDictionary> copy() const { return fixedCopy(); }

 protected:
  /// How a mutable dictionary is created and copied, and how an enumeration notices a change.
  ///@{
  NSMutableDictionary() = default;
  explicit NSMutableDictionary(const NSOrderedTable& table)
      : NSDictionary::Subclass<NSMutableDictionary>(table) {}
  NSRef<NSDictionary> fixedCopy() const override { return NSDictionary::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  std::size_t changes_ = 0;
};
