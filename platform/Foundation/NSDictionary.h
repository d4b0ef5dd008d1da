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
class FOUNDATION_EXPORT NSDictionary : public NSFastEnumeration::Subclass<NSDictionary> {
 public:
  /// One pair of a factory's list, in the order of its name.
  struct ObjectAndKey {
    Object object;  ///< what is kept
    Object key;     ///< what it is found by, copied
  };

  /// A map of none, one or several. Nil raises the invalid-argument exception; for a key that is given twice
  /// the last object counts.
  ///@{
  static Ref<NSDictionary> dictionary();
  static Ref<NSDictionary> dictionaryWithObject(Object object, Object forKey);
  static Ref<NSDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// The number of keys, in constant time.
  std::size_t count() const override { return table_.rows().size(); }
  /// Absent when there is none for the key, or the key is nil. Takes constant time on average.
  RefPtr<NSObject> objectForKey(Object key) const;
  /// New lists, both in the order of the walk.
  ///@{
  Ref<NSArray> allKeys() const;
  Ref<NSArray> allValues() const;
  ///@}

  /// Calls `each(key, object, stop)` in order until it sets `*stop`; raises the generic exception when
  /// the map changes meanwhile.
  template <class Each>
  void enumerateKeysAndObjectsUsingBlock(Each&& each) const {
    bool stop = false;
    std::size_t index = 0;
    for (const Ref<NSObject> key : *this) {
      const Ref<NSObject> object = table_.rows()[index++].value;
      std::invoke(each, key, object, &stop);
      if (stop) return;
    }
  }

  /// Equal is a map of as many keys with an equal object for each, in any order. The hash is the count. The
  /// description is "{key = object; key = object}".
  ///@{
  bool isEqual(const RefPtr<NSObject>& other) const override;
  std::size_t hash() const override { return count(); }
  Ref<NSString> description() const override;
  ///@}
  /// As NSObject's; keys and objects are shared, not copied.
  ///@{
  Ref<NSDictionary> copy() const { return fixedCopy(); }
  Ref<NSMutableDictionary> mutableCopy() const;
  ///@}

 protected:
  template <class Self>
  friend class NSAllocated;

  /// What both kinds share: how they are made, copied and walked.
  ///@{
  NSDictionary() = default;
  explicit NSDictionary(const NSOrderedTable& table) : table_(table) {}
  virtual Ref<NSDictionary> fixedCopy() const { return const_cast<NSDictionary&>(*this); }
  Ref<NSObject> copyObject() const override { return fixedCopy(); }
  Ref<NSObject> mutableCopyObject() const override;
  Ref<NSObject> enumeratedObjectAtIndex(std::size_t index) const override { return table_.rows()[index].key; }

  NSOrderedTable table_;
  ///@}
};

/// A map that is changed in place. For one thread at a time.
class FOUNDATION_EXPORT NSMutableDictionary : public NSDictionary::Subclass<NSMutableDictionary> {
 public:
  /// As NSDictionary's, and always new.
  ///@{
  static Ref<NSMutableDictionary> dictionary() { return alloc(); }
  static Ref<NSMutableDictionary> dictionaryWithObjectsAndKeys(std::initializer_list<ObjectAndKey> pairs);
  ///@}

  /// Nil as object or key raises the invalid-argument exception; the map is then as it was. A key that is
  /// there keeps its place.
  void setObject(Object object, Object forKey);
  /// A key that is not there, or nil, removes nothing. Linear.
  ///@{
  void removeObjectForKey(Object key);
  void removeAllObjects();
  ///@}

  /// A fixed map of the keys and objects at this moment.
  Ref<NSDictionary> copy() const { return fixedCopy(); }

 protected:
  template <class Self>
  friend class NSAllocated;

  /// How the growable kind is made and copied, and how a walk sees that it changed.
  ///@{
  NSMutableDictionary() = default;
  explicit NSMutableDictionary(const NSOrderedTable& table)
      : NSDictionary::Subclass<NSMutableDictionary>(table) {}
  Ref<NSDictionary> fixedCopy() const override { return NSDictionary::alloc(table_); }
  std::size_t changes() const noexcept override { return changes_; }
  ///@}

 private:
  std::size_t changes_ = 0;
};
