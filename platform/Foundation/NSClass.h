#pragma once

#include <string>
#include <string_view>
#include <typeinfo>

#include <Foundation/NSObject.h>

/// The class of an object, and an object itself, so that a class can be a receiver. There is one for each
/// class in the process, whichever shared object asks for it; it is never released.
class NS_EXPORT NSClass final : public NSObject {
 public:
  /// Returns the class of classes.
  static NSClass& classObject();
  NSClass& isa() const override { return classObject(); }

  /// Returns the class of a C++ type, creating it with the given superclass on the first call. Safe from any
  /// thread.
  static NSClass& ofType(const std::type_info& type, NSClass* superclass);

  /// Returns the name without namespaces.
  std::string_view name() const noexcept { return name_; }
  /// Returns the superclass; null for the root class.
  NSClass* superclass() const noexcept { return superclass_; }
  /// Returns whether this is the other class or a subclass of it. The cost grows with the number of classes
  /// in between.
  bool isSubclassOfClass(const NSClass& other) const noexcept;

  /// Returns the name.
  NSRef<NSString> description() const override;

 private:
  NSClass(std::string name, NSClass* superclass) : name_(std::move(name)), superclass_(superclass) {}
  void livesOnTheHeap() const override {}

  std::string name_;
  NSClass* superclass_;
};

/// Returns the name of the class, without namespaces.
NS_EXPORT NSRef<NSString> NSStringFromClass(const NSClass& receiver);

template <class Self, class Base>
NSClass& NSObjectLayer<Self, Base>::classObject() {
  static NSClass& ofSelf = NSClass::ofType(typeid(Self), &Base::classObject());
  return ofSelf;
}

/// Returns the object as a T, or nil if it is not one. The overload for a plain pointer returns a plain
/// pointer, which holds no reference to the object.
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
