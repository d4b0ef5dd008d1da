#include <CoreServices/Internal/UTTypeDeclarations.h>

#include <algorithm>
#include <optional>

#include <Foundation/NSArray.h>

namespace {

using Strings = std::vector<std::string>;

// Accepts one string, an array of strings, or nil. Empty strings, and those that are not UTF-8, are
// malformed.
std::optional<Strings> stringsIn(const NSRefPtr<NSObject>& object) {
  Strings strings;
  if (!object) return strings;
  const NSRefPtr<NSArray> several = NSDynamicCast<NSArray>(object);
  const NSRef<NSArray> objects = several ? NSRef<NSArray>(several) : NSArray::arrayWithObject(object);
  for (const NSRef<NSObject> each : *objects) {
    const NSRefPtr<NSString> string = NSDynamicCast<NSString>(each);
    const auto utf8 = string ? string->UTF8String() : std::nullopt;
    if (!utf8 || utf8->empty()) return std::nullopt;
    strings.push_back(*utf8);
  }
  return strings;
}

std::optional<std::string> identifierIn(const NSRefPtr<NSObject>& object) {
  const auto identifiers = NSDynamicCast<NSString>(object) ? stringsIn(object) : std::nullopt;
  return identifiers ? std::optional(identifiers->front()) : std::nullopt;
}

bool contains(const Strings& strings, const std::string& string) {
  return std::find(strings.begin(), strings.end(), string) != strings.end();
}

bool addTags(const NSDictionary& byClass, UTTagKind kind, std::string_view tagClass, UTTags& tags) {
  const NSRefPtr<NSString> key = NSString::stringWithUTF8String(tagClass);
  const auto strings = stringsIn(byClass.objectForKey(key));
  if (!strings) return false;
  for (const std::string& each : *strings) {
    const auto tag = UTTagFrom(kind, each);
    if (!tag) return false;
    if (!contains(tags[kind], tag->text)) tags[kind].push_back(tag->text);
  }
  return true;
}

// Tag classes that are not known are passed over.
std::optional<UTTags> tagsIn(const NSRefPtr<NSObject>& object) {
  UTTags tags;
  if (!object) return tags;
  const NSRefPtr<NSDictionary> byClass = NSDynamicCast<NSDictionary>(object);
  if (!byClass || !addTags(*byClass, UTTagKind::extension, UTExtensionClassName, tags) ||
      !addTags(*byClass, UTTagKind::mimeType, UTMIMETypeClassName, tags))
    return std::nullopt;
  return tags;
}

bool saysNothingNew(const UTTypeDeclaration& later, const UTTypeDeclaration& first) {
  const auto has = [](const Strings& all, const Strings& some) {
    return std::all_of(some.begin(), some.end(), [&](const auto& each) { return contains(all, each); });
  };
  return later.conformsTo == first.conformsTo && has(first.tags.extensions, later.tags.extensions) &&
         has(first.tags.mimeTypes, later.tags.mimeTypes);
}

std::optional<UTTypeDeclaration> declarationIn(const NSRefPtr<NSDictionary>& declaration,
                                               NSRefPtr<NSError>* error) {
  const auto refuse = [error](UTTypeError code, NSStringArg reason) {
    UTRefuse(error, code, reason);
    return std::nullopt;
  };
  if (!declaration) return refuse(UTTypeErrorMalformed, "a type declaration is not a dictionary");
  const NSRefPtr<NSObject> name = declaration->objectForKey("UTTypeIdentifier");
  const auto identifier = identifierIn(name);
  if (!identifier) return refuse(UTTypeErrorMalformed, "a type is declared without an identifier");
  const auto supertypes = stringsIn(declaration->objectForKey("UTTypeConformsTo"));
  if (!supertypes)
    return refuse(
        UTTypeErrorMalformed,
        NSString::stringWithFormat(
            "%@ conforms to something that is neither an identifier nor an array of identifiers", name));
  if (contains(*supertypes, *identifier))
    return refuse(UTTypeErrorItself, NSString::stringWithFormat("%@ conforms to itself", name));
  const auto tags = tagsIn(declaration->objectForKey("UTTypeTagSpecification"));
  if (!tags)
    return refuse(UTTypeErrorMalformed,
                  NSString::stringWithFormat(
                      "the tags of %@ are not a dictionary of strings and arrays of strings", name));
  return UTTypeDeclaration{*identifier, {supertypes->begin(), supertypes->end()}, *tags, {}};
}

bool addExportedType(const NSRefPtr<NSDictionary>& dictionary, UTTypeDeclarations& declarations,
                     NSRefPtr<NSError>* error) {
  auto declaration = declarationIn(dictionary, error);
  if (!declaration) return false;
  const UTTypeDeclaration* const first = declarations.find(declaration->identifier);
  if (!first) {
    declarations.add(*std::move(declaration));
    return true;
  }
  return saysNothingNew(*declaration, *first) ||
         UTRefuse(error, UTTypeErrorContradiction,
                  NSString::stringWithFormat("%@ is already declared differently",
                                             NSString::stringWithUTF8String(declaration->identifier)));
}

}  // namespace

const UTTypeDeclaration* UTTypeDeclarations::find(const std::string& identifier) const {
  const auto found = indexes_.find(identifier);
  return found == indexes_.end() ? nullptr : &all_[found->second];
}

void UTTypeDeclarations::add(UTTypeDeclaration declaration) {
  indexes_.emplace(declaration.identifier, all_.size());
  all_.push_back(std::move(declaration));
}

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
