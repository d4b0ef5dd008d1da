#include <CoreServices/Internal/UTTypeDeclarations.h>

#include <optional>

#include <Foundation/NSArray.h>

namespace {

std::optional<std::u16string> identifierIn(const NSRefPtr<NSObject>& object) {
  const NSRefPtr<NSString> text = NSDynamicCast<NSString>(object);
  if (!text || text->length() == 0) return std::nullopt;
  return static_cast<std::u16string>(*text);
}

// One identifier, a list of them, or nothing.
std::optional<std::set<std::u16string>> identifiersIn(const NSRefPtr<NSObject>& object) {
  std::set<std::u16string> identifiers;
  if (!object) return identifiers;
  const NSRefPtr<NSArray> several = NSDynamicCast<NSArray>(object);
  const NSRef<NSArray> list = several ? NSRef<NSArray>(several) : NSArray::arrayWithObject(object);
  for (const NSRef<NSObject> each : *list) {
    const auto identifier = identifierIn(each);
    if (!identifier) return std::nullopt;
    identifiers.insert(*identifier);
  }
  return identifiers;
}

bool addExportedType(const NSRefPtr<NSDictionary>& declaration, UTTypeDeclarations& declarations,
                     NSRefPtr<NSError>* error) {
  if (!declaration) return UTRefuse(error, UTTypeErrorMalformed, "a type declaration is no dictionary");
  const NSRefPtr<NSObject> name = declaration->objectForKey("UTTypeIdentifier");
  const auto identifier = identifierIn(name);
  if (!identifier) return UTRefuse(error, UTTypeErrorMalformed, "a type is declared without an identifier");
  const auto refuse = [&](UTTypeError code, NSStringArg format) {
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
                        NSRefPtr<NSError>* error) {
  const NSRefPtr<NSObject> exported = information.objectForKey("UTExportedTypeDeclarations");
  if (!exported) return true;
  const NSRefPtr<NSArray> list = NSDynamicCast<NSArray>(exported);
  if (!list) return UTRefuse(error, UTTypeErrorMalformed, "the exported type declarations are no list");
  for (const NSRef<NSObject> each : *list)
    if (!addExportedType(NSDynamicCast<NSDictionary>(each), declarations, error)) return false;
  return true;
}

bool UTRefuse(NSRefPtr<NSError>* error, UTTypeError code, NSStringArg reason) {
  if (error)
    *error = NSError::errorWithDomain(
        UTTypeErrorDomain, code, NSDictionary::dictionaryWithObject(reason.get(), NSLocalizedDescriptionKey));
  return false;
}
