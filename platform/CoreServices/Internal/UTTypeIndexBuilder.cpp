#include <algorithm>

#include <CoreServices/Internal/UTDynamicType.h>
#include <CoreServices/Internal/UTTypeIndex.h>

/// Fills an index: first with the declared types, then with those of the database.
class UTTypeIndexBuilder {
 public:
  explicit UTTypeIndexBuilder(UTTypeIndex& index) : index_(index) {}

  bool addDeclarations(const UTTypeDeclarations& declarations, NSRefPtr<NSError>* error) {
    for (const UTTypeDeclaration& each : declarations.all()) numberOf(each.identifier);  // in this order
    std::vector<UTTypeNumbers> parents;
    for (const UTTypeDeclaration& each : declarations.all()) {
      parents.emplace_back();
      for (const std::string& supertype : each.conformsTo) parents.back().push_back(numberOf(supertype));
      addDeclaration(each);
    }
    parents.resize(index_.types_.size());
    return UTFindSupertypes(parents, index_.types_, error);
  }

  void addDatabase(const UTMIMEDatabase& database) {
    standsFor_.resize(database.count());
    for (UTMIMENumber each = 0; each < database.count(); ++each) place(database, database.spellings(each));
    for (UTMIMENumber each = 0; each < database.count(); ++each)
      if (database.type(each) == each) connect(database, each);
    for (const UTMIMEDatabase::Glob& each : database.globs())
      addGlob(each.pattern, standsFor_[database.type(each.type)]);
  }

 private:
  UTTypeNumber numberOf(std::string_view identifier) {
    const auto next = static_cast<UTTypeNumber>(index_.types_.size());
    const auto [entry, isNew] = index_.numbers_.emplace(identifier, next);
    if (isNew) index_.types_.push_back({entry->first});
    return entry->second;
  }

  void addDeclaration(const UTTypeDeclaration& declaration) {
    const UTTypeNumber number = numberOf(declaration.identifier);
    UTIndexedType& type = index_.types_[number];
    type.isDeclared = true;
    // What is declared with a dynamic identifier also conforms by what that identifier packs.
    type.isSettled = !UTHasDynamicForm(declaration.identifier);
    type.tags = declaration.tags;
    for (const std::string& each : declaration.tags.extensions) index_.names_.add("*." + each, number);
    for (const std::string& each : declaration.tags.mimeTypes) index_.byMIMEType_[each].push_back(number);
    for (const std::string& each : declaration.kinds) {
      index_.byKind_[each].push_back(number);
      type.tags.mimeTypes.push_back(each);
    }
  }

  // Makes a type of the database known: as the declared one that has one of its spellings as a tag, or as a
  // dynamic one.
  void place(const UTMIMEDatabase& database, const UTMIMEDatabase::Numbers& spellings) {
    if (spellings.empty()) return;
    UTTypeNumbers same;
    for (const UTMIMENumber each : spellings)
      if (const auto found = index_.byMIMEType_.find(database.name(each)); found != index_.byMIMEType_.end())
        same.insert(same.end(), found->second.begin(), found->second.end());
    if (same.empty())
      same = {numberOf(UTDynamicIdentifier({{UTTagKind::mimeType, database.name(spellings.front())}, ""}))};
    for (const UTMIMENumber each : spellings) {
      UTTypeNumbers& types = index_.byMIMEType_[database.name(each)];
      types.insert(types.end(), same.begin(), same.end());
      addTag(types.front(), UTTagKind::mimeType, database.name(each));
      standsFor_[each] = types.front();
    }
  }

  // Gives a dynamic type its supertypes; a declared one keeps those that it has.
  void connect(const UTMIMEDatabase& database, UTMIMENumber mimeType) {
    UTIndexedType& type = index_.types_[standsFor_[mimeType]];
    if (type.isDeclared || pairs_ > UTMaximumPairs) return;
    for (const UTMIMENumber ancestor : database.ancestors(mimeType)) {
      addSupertype(standsFor_[ancestor], type.supertypes);
      if (index_.types_[standsFor_[ancestor]].isDeclared) continue;
      for (const UTTypeNumber parent : index_.tableParents(database.name(ancestor)))
        addSupertype(parent, type.supertypes);
    }
    UTSort(type.supertypes);
    type.isSettled = true;
    pairs_ += type.supertypes.size();
  }

  void addSupertype(UTTypeNumber supertype, UTTypeNumbers& supertypes) const {
    const UTIndexedType& type = index_.types_[supertype];
    if (type.isDeclared)
      supertypes.insert(supertypes.end(), type.supertypes.begin(), type.supertypes.end());
    else
      supertypes.push_back(supertype);
  }

  void addGlob(const std::string& pattern, UTTypeNumber type) {
    index_.names_.add(pattern, type);
    const std::string extension = pattern.starts_with("*.") ? pattern.substr(2) : "";
    const UTTypeNumbers& types = index_.names_.withExtension(extension);
    if (!types.empty() && types.front() == type && UTLowerCase(extension) == extension)
      addTag(type, UTTagKind::extension, extension);
  }

  void addTag(UTTypeNumber type, UTTagKind kind, const std::string& tag) {
    std::vector<std::string>& tags = index_.types_[type].tags[kind];
    if (tags.size() < maximumTags && std::find(tags.begin(), tags.end(), tag) == tags.end())
      tags.push_back(tag);
  }

  static constexpr std::size_t maximumTags = 100;

  UTTypeIndex& index_;
  UTTypeNumbers standsFor_;  // the types of MIME types, by their numbers
  std::size_t pairs_ = 0;
};

std::unique_ptr<const UTTypeIndex> UTTypeIndex::make(const UTTypeDeclarations& declarations,
                                                     const UTMIMEDatabase& database,
                                                     NSRefPtr<NSError>* error) {
  std::unique_ptr<UTTypeIndex> index(new UTTypeIndex);
  UTTypeIndexBuilder builder(*index);
  if (!builder.addDeclarations(declarations, error)) return nullptr;
  builder.addDatabase(database);
  return index;
}
