#pragma once

#include <functional>
#include <initializer_list>

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSOrderedTable.h>
#include <Foundation/NSString.h>

class NSArray;
class NSMutableDictionary;

/// Objects by key, kept in the order in which the keys were put in, which is the order of the walk over
/// the keys. Keys are copied and compared by value. Fixed, so that any number of threads may use one at
/// once.
class NS_EXPORT NSDictionary : public NSFastEnumeration::Subclass<NSDictionary> {
 public:
  /// One pair of a factory's list, in the order of its name.
  struct ObjectAndKey {
    NSObjectArg object;  ///< what is kept
    NSObjectArg key;     ///< what it is found by, copied
  };

  /// A map of none, one or several. Nil raises the invalid-argument exception; for a key that is given twice
  /// the last object counts.
  ///@{
  static NSRef<NSDictionary> dictionary();
  static NSRef<NSDictionary> dictionaryWithObject(NSObjectArg object, NSObjectArg forKey);
  static NSRef<NSDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// The number of keys, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Absent when there is none for the key, or the key is nil. Takes constant time on average.
  NSRefPtr<NSObject> objectForKey(NSObjectArg key) const;
  /// New lists, both in the order of the walk.
  ///@{
  NSRef<NSArray> allKeys() const;
  NSRef<NSArray> allValues() const;
  ///@}

  /// Calls `each(key, object, stop)` in order until it sets `*stop`; raises the generic exception when
  /// the map changes meanwhile.
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

  /// Equal is a map of as many keys with an equal object for each, in any order. The hash is the count. The
  /// description is "{key = object; key = object}".
  ///@{
  bool isEqual(const NSRefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  NSRef<NSString> description() const override;
  ///@}
  /// As NSObject's; keys and objects are shared, not copied.
  ///@{
  NSRef<NSDictionary> copy() const { return fixedCopy(); }
  NSRef<NSMutableDictionary> mutableCopy() const;
  ///@}

 protected:
  /// What both kinds share: how they are made, copied and walked.
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

/// A map that is changed in place. For one thread at a time.
class NS_EXPORT NSMutableDictionary : public NSDictionary::Subclass<NSMutableDictionary> {
 public:
  /// As NSDictionary's, and always new.
  ///@{
  static NSRef<NSMutableDictionary> dictionary() { return alloc(); }
  static NSRef<NSMutableDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// Nil as object or key raises the invalid-argument exception; the map is then as it was. A key that is
  /// there keeps its place.
  void setObject(NSObjectArg object, NSObjectArg forKey);
  /// A key that is not there, or nil, removes nothing. Linear.
  ///@{
  void removeObjectForKey(NSObjectArg key);
  void removeAllObjects();
  ///@}

  /// A fixed map of the keys and objects at this moment.
  NSRef<NSDictionary> copy() const { return fixedCopy(); }

 protected:
  /// How the growable kind is made and copied, and how a walk sees that it changed.
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
