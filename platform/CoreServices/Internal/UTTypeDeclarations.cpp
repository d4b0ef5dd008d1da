#include <CoreServices/Internal/UTTypeDeclarations.h>

#include <optional>

#include <Foundation/NSArray.h>

namespace {

std::optional<std::u16string> identifierIn(const NSRefPtr<NSObject>& object) {
  const NSRefPtr<NSString> identifier = NSDynamicCast<NSString>(object);
  if (!identifier || identifier->length() == 0) return std::nullopt;
  return static_cast<std::u16string>(*identifier);
}

// Accepts one identifier, an array of identifiers, or nil.
std::optional<std::set<std::u16string>> identifiersIn(const NSRefPtr<NSObject>& object) {
  std::set<std::u16string> identifiers;
  if (!object) return identifiers;
  const NSRefPtr<NSArray> several = NSDynamicCast<NSArray>(object);
  const NSRef<NSArray> objects = several ? NSRef<NSArray>(several) : NSArray::arrayWithObject(object);
  for (const NSRef<NSObject> each : *objects) {
    const auto identifier = identifierIn(each);
    if (!identifier) return std::nullopt;
    identifiers.insert(*identifier);
  }
  return identifiers;
}

bool addExportedType(const NSRefPtr<NSDictionary>& declaration, UTTypeDeclarations& declarations,
                     NSRefPtr<NSError>* error) {
  if (!declaration) return UTRefuse(error, UTTypeErrorMalformed, "a type declaration is not a dictionary");
  const NSRefPtr<NSObject> name = declaration->objectForKey("UTTypeIdentifier");
  const auto identifier = identifierIn(name);
  if (!identifier) return UTRefuse(error, UTTypeErrorMalformed, "a type is declared without an identifier");
  const auto refuse = [&](UTTypeError code, NSStringArg format) {
    return UTRefuse(error, code, NSString::stringWithFormat(format, name));
  };
  const auto supertypes = identifiersIn(declaration->objectForKey("UTTypeConformsTo"));
  if (!supertypes)
    return refuse(UTTypeErrorMalformed,
                  "%@ conforms to something that is neither an identifier nor an array of identifiers");
  if (supertypes->contains(*identifier)) return refuse(UTTypeErrorItself, "%@ conforms to itself");
  const auto [entry, isNew] = declarations.emplace(*identifier, *supertypes);
  if (!isNew && entry->second != *supertypes)
    return refuse(UTTypeErrorContradiction, "%@ is already declared differently");
  return true;
}

}  // namespace

bool UTAddExportedTypes(const NSDictionary& information, UTTypeDeclarations& declarations,
                        NSRefPtr<NSError>* error) {
  const NSRefPtr<NSObject> exported = information.objectForKey("UTExportedTypeDeclarations");
  if (!exported) return true;
  const NSRefPtr<NSArray> array = NSDynamicCast<NSArray>(exported);
  if (!array) return UTRefuse(error, UTTypeErrorMalformed, "the exported type declarations are not an array");
  for (const NSRef<NSObject> each : *array)
    if (!addExportedType(NSDynamicCast<NSDictionary>(each), declarations, error)) return false;
  return true;
}

bool UTRefuse(NSRefPtr<NSError>* error, UTTypeError code, NSStringArg reason) {
  if (error)
    *error = NSError::errorWithDomain(
        UTTypeErrorDomain, code, NSDictionary::dictionaryWithObject(reason.get(), NSLocalizedDescriptionKey));
  return false;
}
