#include <CoreServices/UTType.h>

#include <CoreServices/Internal/UTDynamicType.h>
#include <CoreServices/Internal/UTTypeRegistry.h>
#include <CoreServices/Internal/UTTypeRelation.h>
#include <CoreServices/Internal/UTUTF8.h>
#include <Foundation/NSPropertyList.h>

const NSRef<NSString>& UTTypeErrorDomain = NSConstantString("UTTypeErrorDomain");

namespace {

// Made once, so that a query allocates nothing.
const NSRef<NSString>& dynamicPrefix = NSConstantString(UTDynamicPrefix);

}  // namespace

bool UTTypeConformsTo(NSStringArg type, NSStringArg otherType) {
  const auto identifier = type.borrow();
  const auto otherIdentifier = otherType.borrow();
  return identifier && otherIdentifier && UTTypeRelation(*identifier, *otherIdentifier).value_or(false);
}

bool UTTypeIsDeclared(NSStringArg type) {
  const auto identifier = type.borrow();
  if (!identifier) return false;
  const UTUTF8 utf8(*identifier);
  const auto index = UTTypeRegistry::shared().declaredTypes();
  const UTIndexedType* const known = utf8 ? index->find(*utf8) : nullptr;
  return known && known->isDeclared;
}

bool UTTypeIsDynamic(NSStringArg type) {
  const auto identifier = type.borrow();
  return identifier && identifier->hasPrefix(dynamicPrefix) && identifier->length() > dynamicPrefix->length();
}

bool UTTypeDeclareTypesInFile(NSStringArg path, NSRefPtr<NSError>* error) {
  const auto text = path.borrow();
  const auto name = text ? text->UTF8String() : std::nullopt;
  const auto information =
      name ? NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(*name)) : nullptr;
  if (!information) return UTRefuse(error, UTTypeErrorUnreadable, "the information file cannot be read");
  return UTTypeRegistry::shared().declare(*information, error);
}
