#include <CoreServices/Internal/UTTypeIndex.h>

#include <algorithm>

namespace {

struct MediaType {
  std::string_view prefix;
  std::string_view supertype;
};

// What a MIME type says by its first part alone.
constexpr MediaType mediaTypes[] = {
    {"audio/", "public.audio"}, {"font/", "public.font"}, {"image/", "public.image"},
    {"inode/", "public.item"},  {"text/", "public.text"}, {"video/", "public.movie"},
};

}  // namespace

const UTIndexedType* UTTypeIndex::find(std::string_view identifier) const {
  const auto found = numbers_.find(identifier);
  return found == numbers_.end() ? nullptr : &types_[found->second];
}

std::vector<const UTIndexedType*> UTTypeIndex::withTag(const UTTag& tag) const {
  if (tag.kind == UTTagKind::extension) return types(names_.withExtension(tag.text));
  const auto found = byMIMEType_.find(tag.text);
  return found == byMIMEType_.end() ? types({}) : types(found->second);
}

const UTIndexedType* UTTypeIndex::forFileName(std::string_view name) const {
  const auto number = names_.find(name);
  return number ? &types_[*number] : nullptr;
}

std::vector<const UTIndexedType*> UTTypeIndex::parentsByRule(const UTTag& tag) const {
  if (tag.kind == UTTagKind::extension) return {find("public.data")};
  auto parents = types(tableParents(tag.text));
  for (const std::string_view each : UTMIMEDatabase::parentsByRule(tag.text)) {
    const auto more = withTag({UTTagKind::mimeType, std::string(each)});
    parents.insert(parents.end(), more.begin(), more.end());
  }
  return parents;
}

bool UTTypeIndex::conforms(const UTIndexedType& type, const UTIndexedType& other) const {
  const auto number = static_cast<UTTypeNumber>(&other - types_.data());
  return std::binary_search(type.supertypes.begin(), type.supertypes.end(), number);
}

std::vector<const UTIndexedType*> UTTypeIndex::types(const UTTypeNumbers& numbers) const {
  std::vector<const UTIndexedType*> types;
  for (const UTTypeNumber each : numbers) types.push_back(&types_[each]);
  return types;
}

UTTypeNumbers UTTypeIndex::tableParents(std::string_view mimeType) const {
  UTTypeNumbers parents;
  if (const auto found = byKind_.find(mimeType); found != byKind_.end()) parents = found->second;
  for (const MediaType& each : mediaTypes)
    if (mimeType.starts_with(each.prefix)) parents.push_back(numbers_.find(each.supertype)->second);
  return parents;
}
