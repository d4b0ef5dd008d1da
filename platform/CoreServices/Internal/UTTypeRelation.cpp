#include <CoreServices/Internal/UTTypeRelation.h>

#include <algorithm>

#include <CoreServices/Internal/UTDynamicType.h>
#include <CoreServices/Internal/UTTypeRegistry.h>
#include <CoreServices/Internal/UTUTF8.h>

namespace {

// A dynamic type conforms to what its tag stands for now, otherwise to what anything with such a tag conforms
// to, and to the type that it names.
bool conformsByTag(const UTTypeIndex& index, std::string_view type, std::string_view other) {
  const auto dynamic = UTDynamicTypeFrom(type);
  if (!dynamic) return false;
  if (!dynamic->conformsTo.empty() && UTTypeRelation(index, dynamic->conformsTo, other) == true) return true;
  const auto same = index.withTag(dynamic->tag);
  const bool isKnown = !same.empty() && same.front()->isSettled;
  const auto parents = isKnown ? std::vector{same.front()} : index.parentsByRule(dynamic->tag);
  const UTIndexedType* const known = index.find(other);
  return known && std::any_of(parents.begin(), parents.end(),
                              [&](const UTIndexedType* parent) { return index.conforms(*parent, *known); });
}

}  // namespace

std::optional<bool> UTTypeRelation(const UTTypeIndex& index, std::string_view type, std::string_view other) {
  if (type == other) return true;
  const UTIndexedType* const known = index.find(type);
  const UTIndexedType* const knownOther = index.find(other);
  if (known && knownOther && index.conforms(*known, *knownOther)) return true;
  const bool isSettled = known && known->isSettled;
  if (isSettled && knownOther && knownOther->isSettled) return false;
  if (!isSettled && conformsByTag(index, type, other)) return true;
  return std::nullopt;
}

std::optional<bool> UTTypeRelation(const NSString& type, const NSString& other) {
  const UTUTF8 identifier(type), otherIdentifier(other);
  if (!identifier || !otherIdentifier)
    return type.isEqualToString(other) ? std::optional(true) : std::nullopt;
  UTTypeRegistry& registry = UTTypeRegistry::shared();
  const auto index = UTHasDynamicForm(*identifier) ? registry.allTypes() : registry.declaredTypes();
  return UTTypeRelation(*index, *identifier, *otherIdentifier);
}
