#include <CoreServices/UTTypeTags.h>

#include <algorithm>

#include <CoreServices/Internal/UTDynamicType.h>
#include <CoreServices/Internal/UTTypeRegistry.h>
#include <CoreServices/Internal/UTTypeRelation.h>

const NSRef<NSString>& UTTagClassFilenameExtension = NSConstantString(UTExtensionClassName);
const NSRef<NSString>& UTTagClassMIMEType = NSConstantString(UTMIMETypeClassName);

namespace {

// Both read a parameter of a public function, which exceptions name as `operation`.
std::optional<std::string> UTF8From(NSStringArg string, const char* operation = __builtin_FUNCTION()) {
  const auto borrowed = string.borrow(operation);
  return borrowed ? borrowed->UTF8String() : std::nullopt;
}

std::optional<UTTagKind> kindFrom(NSStringArg tagClass, const char* operation = __builtin_FUNCTION()) {
  const auto borrowed = tagClass.borrow(operation);
  return borrowed ? UTTagKindOfClass(*borrowed) : std::nullopt;
}

NSRefPtr<NSString> stringFrom(std::string_view utf8) { return NSString::stringWithUTF8String(utf8); }

// An empty identifier stands for any type.
bool conforms(const UTTypeIndex& index, std::string_view type, std::string_view other) {
  return other.empty() || UTTypeRelation(index, type, other) == true;
}

// Returns an empty identifier if no type of the index fits.
std::string knownType(const UTTypeIndex& index, const UTTag& tag, std::string_view conformingTo) {
  for (const UTIndexedType* each : index.withTag(tag))
    if (conforms(index, each->identifier, conformingTo)) return std::string(each->identifier);
  return {};
}

std::string typeWithTag(const UTTag& tag, const std::string& conformingTo) {
  UTTypeRegistry& registry = UTTypeRegistry::shared();
  if (const auto type = knownType(*registry.declaredTypes(), tag, conformingTo); !type.empty()) return type;
  const auto index = registry.allTypes();
  if (const auto type = knownType(*index, tag, conformingTo); !type.empty()) return type;
  const std::string plain = UTDynamicIdentifier({tag, ""});
  return conforms(*index, plain, conformingTo) ? plain : UTDynamicIdentifier({tag, conformingTo});
}

std::string typeOfFile(std::string_view name) {
  name.remove_prefix(std::min(name.rfind('/') + 1, name.size()));
  const auto index = UTTypeRegistry::shared().allTypes();
  if (const UTIndexedType* known = index->forFileName(name)) return std::string(known->identifier);
  const std::size_t dot = name.rfind('.');
  const bool hasExtension = dot != name.npos && dot > 0 && dot + 1 < name.size();
  if (!hasExtension) return "public.data";
  return UTDynamicIdentifier({*UTTagFrom(UTTagKind::extension, name.substr(dot + 1)), ""});
}

std::vector<std::string> tagsOf(std::string_view type, UTTagKind kind) {
  const auto index = UTTypeRegistry::shared().allTypes();
  const UTIndexedType* known = index->find(type);
  std::vector<std::string> tags = known ? known->tags[kind] : std::vector<std::string>();
  if (known && known->isSettled) return tags;
  const auto dynamic = UTDynamicTypeFrom(type);
  if (!dynamic) return tags;
  if (dynamic->tag.kind == kind) tags.push_back(dynamic->tag.text);
  const auto others = index->withTag(dynamic->tag);
  if (!others.empty())
    for (const std::string& each : others.front()->tags[kind])
      if (std::find(tags.begin(), tags.end(), each) == tags.end()) tags.push_back(each);
  return tags;
}

}  // namespace

NSRefPtr<NSString> UTTypeIdentifierForTag(NSStringArg tagClass, NSStringArg tag, NSStringArg conformingTo) {
  const auto kind = kindFrom(tagClass);
  const auto text = UTF8From(tag);
  const auto normal = kind && text ? UTTagFrom(*kind, *text) : std::nullopt;
  const auto other = UTF8From(conformingTo);
  if (!normal || (conformingTo && !other)) return nullptr;
  return stringFrom(typeWithTag(*normal, other.value_or("")));
}

NSRefPtr<NSString> UTTypeIdentifierForFileName(NSStringArg name) {
  const auto utf8 = UTF8From(name);
  return utf8 ? stringFrom(typeOfFile(*utf8)) : nullptr;
}

NSRefPtr<NSArray> UTTypeTags(NSStringArg type, NSStringArg tagClass) {
  const auto identifier = UTF8From(type);
  if (!type || !tagClass) return nullptr;
  const NSRef<NSMutableArray> tags = NSMutableArray::arrayWithCapacity(0);
  const auto kind = kindFrom(tagClass);
  if (identifier && kind)
    for (const std::string& each : tagsOf(*identifier, *kind)) tags->addObject(stringFrom(each));
  return tags->copy();
}

NSRefPtr<NSString> UTTypePreferredTag(NSStringArg type, NSStringArg tagClass) {
  const auto identifier = UTF8From(type);
  const auto kind = kindFrom(tagClass);
  if (!identifier || !kind) return nullptr;
  const auto tags = tagsOf(*identifier, *kind);
  return tags.empty() ? nullptr : stringFrom(tags.front());
}
