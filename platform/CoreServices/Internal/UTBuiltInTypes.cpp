#include <string_view>

#include <CoreServices/Internal/UTTypeDeclarations.h>

namespace {

struct BuiltInType {
  std::string_view identifier;
  std::string_view conformsTo[3];
};

constexpr BuiltInType builtInTypes[] = {
#include <CoreServices/Internal/UTBuiltInTypes.inc>
};

std::u16string wide(std::string_view identifier) { return {identifier.begin(), identifier.end()}; }

}  // namespace

UTTypeDeclarations UTBuiltInTypes() {
  UTTypeDeclarations declarations;
  for (const BuiltInType& type : builtInTypes) {
    auto& supertypes = declarations[wide(type.identifier)];
    for (const std::string_view each : type.conformsTo)
      if (!each.empty()) supertypes.insert(wide(each));
  }
  return declarations;
}
