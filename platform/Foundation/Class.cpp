#include <Foundation/Class.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <typeindex>
#include <unordered_map>

#include <Foundation/NSString.h>

namespace {

struct Registry {
  std::mutex mutex;
  std::unordered_map<std::type_index, Class*> classes;
};

// Never destroyed: objects may be let go of after the destructors of this library ran.
Registry& registry() {
  static Registry& only = *new Registry;
  return only;
}

std::string_view withoutScopes(std::string_view name) {
  std::size_t start = 0;
  int depth = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (c == '<' || c == '(') ++depth;
    if (c == '>' || c == ')') --depth;
    if (c == ':' && depth == 0) start = i + 1;
  }
  return name.substr(start);
}

std::string readableName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return std::string(withoutScopes(status == 0 ? name.get() : type.name()));
}

}  // namespace

Class& Class::classObject() {
  static Class& ofClasses = ofType(typeid(Class), &NSObject::classObject());
  return ofClasses;
}

Class& Class::ofType(const std::type_info& type, Class* superclass) {
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  Class*& entry = all.classes[type];
  if (!entry) entry = new Class(readableName(type), superclass);
  return *entry;
}

bool Class::isSubclassOfClass(const Class& other) const noexcept {
  for (const Class* each = this; each; each = each->superclass_)
    if (each == &other) return true;
  return false;
}

Ref<NSString> Class::description() const { return NSStringFromClass(*this); }

Ref<NSString> NSStringFromClass(const Class& receiver) {
  return NSString::stringWithUTF8String(receiver.name());
}
