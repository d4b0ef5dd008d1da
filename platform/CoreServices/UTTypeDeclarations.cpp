#include <CoreServices/UTTypeDeclarations.h>

#include <optional>

#include <Foundation/NSArray.h>

namespace {

std::optional<std::u16string> identifierIn(const RefPtr<NSObject>& object) {
  const RefPtr<NSString> text = dynamicCast<NSString>(object);
  if (!text || text->length() == 0) return std::nullopt;
  return static_cast<std::u16string>(*text);
}

// One identifier, a list of them, or nothing.
std::optional<std::set<std::u16string>> identifiersIn(const RefPtr<NSObject>& object) {
  std::set<std::u16string> identifiers;
  if (!object) return identifiers;
  const RefPtr<NSArray> several = dynamicCast<NSArray>(object);
  const Ref<NSArray> list = several ? Ref<NSArray>(several) : NSArray::arrayWithObject(object);
  for (const Ref<NSObject> each : *list) {
    const auto identifier = identifierIn(each);
    if (!identifier) return std::nullopt;
    identifiers.insert(*identifier);
  }
  return identifiers;
}

bool addExportedType(const RefPtr<NSDictionary>& declaration, UTTypeDeclarations& declarations,
                     RefPtr<NSError>* error) {
  if (!declaration) return UTRefuse(error, UTTypeErrorMalformed, "a type declaration is no dictionary");
  const RefPtr<NSObject> name = declaration->objectForKey("UTTypeIdentifier");
  const auto identifier = identifierIn(name);
  if (!identifier) return UTRefuse(error, UTTypeErrorMalformed, "a type is declared without an identifier");
  const auto refuse = [&](UTTypeError code, Text format) {
    return UTRefuse(error, code, NSString::stringWithFormat(format, name));
  };
  const auto supertypes = identifiersIn(declaration->objectForKey("UTTypeConformsTo"));
  if (!supertypes) return refuse(UTTypeErrorMalformed, "what %@ conforms to is no list of identifiers");
  if (supertypes->contains(*identifier)) return refuse(UTTypeErrorItself, "%@ conforms to itself");
  const auto [entry, isNew] = declarations.emplace(*identifier, *supertypes);
  if (!isNew && entry->second != *supertypes)
    return refuse(UTTypeErrorContradiction, "%@ is declared otherwise already");
  return true;
}

}  // namespace

bool UTAddExportedTypes(const NSDictionary& information, UTTypeDeclarations& declarations,
                        RefPtr<NSError>* error) {
  const RefPtr<NSObject> exported = information.objectForKey("UTExportedTypeDeclarations");
  if (!exported) return true;
  const RefPtr<NSArray> list = dynamicCast<NSArray>(exported);
  if (!list) return UTRefuse(error, UTTypeErrorMalformed, "the exported type declarations are no list");
  for (const Ref<NSObject> each : *list)
    if (!addExportedType(dynamicCast<NSDictionary>(each), declarations, error)) return false;
  return true;
}

bool UTRefuse(RefPtr<NSError>* error, UTTypeError code, Text reason) {
  if (error)
    *error = NSError::errorWithDomain(
        UTTypeErrorDomain, code, NSDictionary::dictionaryWithObject(reason.get(), NSLocalizedDescriptionKey));
  return false;
}
