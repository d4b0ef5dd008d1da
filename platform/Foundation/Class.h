#pragma once

#include <string>
#include <string_view>
#include <typeinfo>

#include <Foundation/NSObject.h>

/// What an object was made of, and an object itself, so that a class can be a receiver. There is one for
/// each class in the process, whichever shared object asks; it is never let go of.
class FOUNDATION_EXPORT Class final : public NSObject {
 public:
  /// The class of classes.
  static Class& classObject();
  Class& isa() const override { return classObject(); }

  /// The class of a C++ type below `superclass`, made at the first call. Safe from any thread.
  static Class& ofType(const std::type_info& type, Class* superclass);

  /// The name without namespaces.
  std::string_view name() const noexcept { return name_; }
  /// Null for the root class.
  Class* superclass() const noexcept { return superclass_; }
  /// Whether this is the other class, or one below it. The cost grows with the classes between.
  bool isSubclassOfClass(const Class& other) const noexcept;

  /// The name.
  Ref<NSString> description() const override;

 private:
  Class(std::string name, Class* superclass) : name_(std::move(name)), superclass_(superclass) {}
  void livesOnTheHeap() const override {}

  std::string name_;
  Class* superclass_;
};

/// The name of the class as a text, without namespaces.
FOUNDATION_EXPORT Ref<NSString> NSStringFromClass(const Class& receiver);

template <class Self, class Base>
Class& NSObjectLayer<Self, Base>::classObject() {
  static Class& ofSelf = Class::ofType(typeid(Self), &Base::classObject());
  return ofSelf;
}

/// The object as one of class T; absent, or null, when it is none. A plain pointer gives one that does not
/// share in the object.
///@{
template <class T, class U>
RefPtr<T> dynamicCast(const RefPtr<U>& object) {
  const bool fits = object && object->isKindOfClass(T::classObject());
  return RefPtr<T>(fits ? static_cast<T*>(static_cast<NSObject*>(object.get())) : nullptr);
}
template <class T, class U>
RefPtr<T> dynamicCast(const Ref<U>& object) {
  return dynamicCast<T>(static_cast<const RefPtr<U>&>(object));
}
template <class T>
const T* dynamicCast(const NSObject* object) {
  return object && object->isKindOfClass(T::classObject()) ? static_cast<const T*>(object) : nullptr;
}
///@}
