#include <CoreServices/Internal/UTDynamicType.h>
#include <CoreServices/Internal/UTTypeIndex.h>
#include <CoreServices/Internal/UTTypeRelation.h>

#include <algorithm>
#include <map>

#include "tests/support/Fuzz.h"

// Shared MIME databases, however damaged: types conform to what they are said to be subclasses of, and so on
// upwards; every name has a type; what is declared does not change.
//
// An input is a file name, a line break, and the files of one database after another, separated by form
// feeds: types, aliases, subclasses, globs2.
namespace {

constexpr UTMIMENumber mostCompared = 48;

const UTTypeDeclarations declarations = UTBuiltInTypes();

std::vector<UTMIMEContents> foldersFrom(FuzzInput& input) {
  std::vector<UTMIMEContents> folders;
  while (!input.atEnd()) {
    UTMIMEContents& contents = folders.emplace_back();
    for (std::string* each : {&contents.types, &contents.aliases, &contents.subclasses, &contents.globs})
      *each = input.upTo('\f');
  }
  return folders;
}

/// An index and what it was made from.
class Types {
 public:
  explicit Types(const std::vector<UTMIMEContents>& folders)
      : database_(folders), index_(UTTypeIndex::make(declarations, database_, nullptr)) {
    fuzzRequire(index_ != nullptr, "no database refuses the declared types");
    for (UTMIMENumber each = 0; each < database_.count(); ++each) numbers_[database_.name(each)] = each;
  }

  void checkNames(const Types& declared) const {
    for (const auto& [name, number] : numbers_) {
      const UTTag tag{UTTagKind::mimeType, name};
      const auto own = declared.index_->withTag(tag);
      const std::string& type = own.empty() ? database_.name(database_.type(number)) : name;
      fuzzRequire(&typeOf(name) == &typeOf(type), "an alias is its type unless it is declared");
      fuzzRequire(own.empty() || own.front()->identifier == typeOf(name).identifier, "declared names stay");
      const auto packed = UTDynamicTypeFrom(UTDynamicIdentifier({tag, name}));
      fuzzRequire(packed && packed->tag == tag && packed->conformsTo == name, "what is packed comes back");
    }
  }

  /// Lines of two names in lower case, as they should be; others may say anything.
  void checkSubclasses(std::string_view lines) const {
    FuzzInput input(reinterpret_cast<const std::uint8_t*>(lines.data()), lines.size());
    while (!input.atEnd()) {
      const std::string line(input.upTo('\n'));
      const std::size_t space = std::min(line.find(' '), line.size() - 1);
      const auto type = numbers_.find(line.substr(0, space)), parent = numbers_.find(line.substr(space + 1));
      if (type == numbers_.end() || parent == numbers_.end() || line.starts_with('#')) continue;
      if (database_.type(type->second) == type->second) require(type->first, parent->first);
    }
  }

  void checkThatRelationsAreTransitive() const {
    for (const auto& [name, number] : numbers_)
      for (const UTMIMENumber above : database_.ancestors(database_.type(number)))
        for (const UTMIMENumber top : database_.ancestors(above)) require(name, database_.name(top));
  }

  void checkDeclaredTypes(const Types& declared) const {
    for (const UTTypeDeclaration& type : declarations.all())
      for (const auto& [name, number] : numbers_) {
        const UTIndexedType& other = typeOf(name);
        if (!other.isDeclared) continue;
        const auto without = UTTypeRelation(*declared.index_, type.identifier, other.identifier);
        fuzzRequire(UTTypeRelation(*index_, type.identifier, other.identifier) == without,
                    "declared types conform as declared");
      }
  }

  void lookUp(std::string_view name) const {
    const UTIndexedType* type = index_->forFileName(name);
    fuzzRequire(!type || index_->find(type->identifier) == type, "a file has a type of the index");
  }

  UTMIMENumber count() const { return database_.count(); }

 private:
  const UTIndexedType& typeOf(const std::string& name) const {
    const auto types = index_->withTag({UTTagKind::mimeType, name});
    fuzzRequire(!types.empty(), "a name has a type");
    return *types.front();
  }

  /// What is declared conforms as declared instead.
  void require(const std::string& name, const std::string& parent) const {
    const UTIndexedType& type = typeOf(name);
    if (type.isDeclared) return;
    const auto relation = UTTypeRelation(*index_, type.identifier, typeOf(parent).identifier);
    fuzzRequire(relation == true, "a type conforms to those above it");
  }

  UTMIMEDatabase database_;
  std::unique_ptr<const UTTypeIndex> index_;
  std::map<std::string, UTMIMENumber> numbers_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Types declared{{}};
  FuzzInput input(data, size);
  const std::string_view name = input.upTo('\n');
  const auto folders = foldersFrom(input);
  const Types types(folders);
  types.lookUp(name);
  if (types.count() > mostCompared) return 0;
  types.checkNames(declared);
  for (const UTMIMEContents& contents : folders) types.checkSubclasses(contents.subclasses);
  types.checkThatRelationsAreTransitive();
  types.checkDeclaredTypes(declared);
  return 0;
}
