#include <string_view>

#include <CoreServices/Internal/UTTypeDeclarations.h>

namespace {

struct BuiltInType {
  std::string_view identifier;
  std::string_view conformsTo[3];
};

struct BuiltInTags {
  std::string_view identifier;
  std::string_view extensions[5] = {};
  std::string_view mimeTypes[4] = {};
  std::string_view kinds[3] = {};
};

constexpr BuiltInType builtInTypes[] = {
#include <CoreServices/Internal/UTBuiltInTypes.inc>
};

constexpr BuiltInTags builtInTags[] = {
#include <CoreServices/Internal/UTBuiltInTags.inc>
};

template <std::size_t Size>
std::vector<std::string> strings(const std::string_view (&row)[Size]) {
  std::vector<std::string> result;
  for (const std::string_view each : row)
    if (!each.empty()) result.emplace_back(each);
  return result;
}

UTTypeDeclaration declarationOf(const BuiltInType& type) {
  const auto supertypes = strings(type.conformsTo);
  UTTypeDeclaration declaration{std::string(type.identifier), {supertypes.begin(), supertypes.end()}, {}, {}};
  for (const BuiltInTags& row : builtInTags)
    if (row.identifier == type.identifier) {
      declaration.tags = {strings(row.extensions), strings(row.mimeTypes)};
      declaration.kinds = strings(row.kinds);
    }
  return declaration;
}

}  // namespace

UTTypeDeclarations UTBuiltInTypes() {
  UTTypeDeclarations declarations;
  for (const BuiltInType& type : builtInTypes) declarations.add(declarationOf(type));
  return declarations;
}
