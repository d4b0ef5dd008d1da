#pragma once

#include <string>
#include <string_view>
#include <typeinfo>

#include <Foundation/NSObject.h>

/// What an object was made of, and an object itself, so that a class can be a receiver. There is one for
/// each class in the process, whichever shared object asks; it is never let go of.
class NS_EXPORT NSClass final : public NSObject {
 public:
  /// The class of classes.
  static NSClass& classObject();
  NSClass& isa() const override { return classObject(); }

  /// The class of a C++ type below `superclass`, made at the first call. Safe from any thread.
  static NSClass& ofType(const std::type_info& type, NSClass* superclass);

  /// The name without namespaces.
  std::string_view name() const noexcept { return name_; }
  /// Null for the root class.
  NSClass* superclass() const noexcept { return superclass_; }
  /// Whether this is the other class, or one below it. The cost grows with the classes between.
  bool isSubclassOfClass(const NSClass& other) const noexcept;

  /// The name.
  NSRef<NSString> description() const override;

 private:
  NSClass(std::string name, NSClass* superclass) : name_(std::move(name)), superclass_(superclass) {}
  void livesOnTheHeap() const override {}

  std::string name_;
  NSClass* superclass_;
};

/// The name of the class as a text, without namespaces.
NS_EXPORT NSRef<NSString> NSStringFromClass(const NSClass& receiver);

template <class Self, class Base>
NSClass& NSObjectLayer<Self, Base>::classObject() {
  static NSClass& ofSelf = NSClass::ofType(typeid(Self), &Base::classObject());
  return ofSelf;
}

/// The object as one of class T; absent, or null, when it is none. A plain pointer gives one that does not
/// share in the object.
///@{
template <class T, class U>
NSRefPtr<T> NSDynamicCast(const NSRefPtr<U>& object) {
  const bool fits = object && object->isKindOfClass(T::classObject());
  return NSRefPtr<T>(fits ? static_cast<T*>(static_cast<NSObject*>(object.get())) : nullptr);
}
template <class T, class U>
NSRefPtr<T> NSDynamicCast(const NSRef<U>& object) {
  return NSDynamicCast<T>(static_cast<const NSRefPtr<U>&>(object));
}
template <class T>
const T* NSDynamicCast(const NSObject* object) {
  return object && object->isKindOfClass(T::classObject()) ? static_cast<const T*>(object) : nullptr;
}
///@}
