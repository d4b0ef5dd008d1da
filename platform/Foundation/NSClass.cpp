#include <Foundation/NSClass.h>

#include <cxxabi.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>

#include <Foundation/NSString.h>

namespace {

/// Classes by the name of their type, which is spelled the same in every shared object of the process. A
/// class without linkage, for example in an unnamed namespace, shares its name with others, so the address of
/// its type is part of its key.
struct Registry {
  std::mutex mutex;
  std::map<std::pair<std::string_view, const std::type_info*>, NSClass*> classes;
};

/// Returns whether the name (Itanium C++ ABI, section 5.1) is that of a type in an unnamed namespace or in a
/// function with internal linkage. g++ marks some of these with an asterisk, which name() omits; clang marks
/// none.
bool isLocalToOneSource(std::string_view name) {
  return name.find("_GLOBAL__N_") != name.npos || name.find("ZL") != name.npos;
}

// Never destroyed: objects may be released after this library's static destructors have run.
Registry& registry() {
  static Registry& only = *new Registry;
  return only;
}

/// Searches from the end, because a scope may be an operator whose name contains a bracket. Within
/// parentheses, where expressions are, angle brackets may be operators, too, and are not counted.
std::string_view withoutScopes(std::string_view name) {
  int parentheses = 0;
  int angles = 0;
  for (std::size_t i = name.size(); i-- > 0;) {
    const char c = name[i];
    parentheses += (c == ')') - (c == '(');
    if (parentheses == 0) angles += (c == '>') - (c == '<');
    if (c == ':' && parentheses == 0 && angles == 0) return name.substr(i + 1);
  }
  return name;
}

std::string readableName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return std::string(withoutScopes(status == 0 ? name.get() : type.name()));
}

}  // namespace

NSClass& NSClass::classObject() {
  static NSClass& ofClasses = ofType(typeid(NSClass), &NSObject::classObject());
  return ofClasses;
}

NSClass& NSClass::ofType(const std::type_info& type, NSClass* superclass) {
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  const std::string_view name = type.name();
  NSClass*& entry = all.classes[{name, isLocalToOneSource(name) ? &type : nullptr}];
  if (!entry) entry = new NSClass(readableName(type), superclass);
  return *entry;
}

bool NSClass::isSubclassOfClass(const NSClass& other) const noexcept {
  for (const NSClass* each = this; each; each = each->superclass_)
    if (each == &other) return true;
  return false;
}

NSRef<NSString> NSClass::description() const { return NSStringFromClass(*this); }

NSRef<NSString> NSStringFromClass(const NSClass& receiver) {
  return NSString::stringWithUTF8String(receiver.name());
}
