#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <CoreServices/Internal/UTFileNames.h>
#include <CoreServices/Internal/UTMIMEDatabase.h>
#include <CoreServices/Internal/UTTypeDeclarations.h>

/// A type of an index.
struct UTIndexedType {
  std::string_view identifier;
  bool isDeclared = false;
  bool isSettled = false;      ///< whether the index knows all that it conforms to
  UTTypeNumbers supertypes{};  ///< all that it conforms to, including itself; sorted
  UTTags tags{};
};

/// Types by identifier, by tag and by file name: the declared ones and those of a MIME database. Immutable,
/// so that any number of threads may use one at once.
class UTTypeIndex {
 public:
  /// Returns nil with an error if declared types conform to one another or to too many others. If the types
  /// of the database conform to too many others, the last of them keep only their parents by rule.
  static std::unique_ptr<const UTTypeIndex> make(const UTTypeDeclarations& declarations,
                                                 const UTMIMEDatabase& database, NSRefPtr<NSError>* error);

  /// Returns the type with the identifier, or null if there is none. A type that is only named as a supertype
  /// is a type, too.
  const UTIndexedType* find(std::string_view identifier) const;
  /// Returns the types that have the tag; the first is the one that the tag stands for.
  std::vector<const UTIndexedType*> withTag(const UTTag& tag) const;
  /// Returns the type of a file, by the patterns of names; null if there is none.
  const UTIndexedType* forFileName(std::string_view name) const;
  /// Returns the types that any type with the tag conforms to, whether or not one is in the index.
  std::vector<const UTIndexedType*> parentsByRule(const UTTag& tag) const;
  /// Returns whether the first type conforms to the second, both of this index.
  bool conforms(const UTIndexedType& type, const UTIndexedType& other) const;

 private:
  friend class UTTypeIndexBuilder;

  using TypesByName = UTStringMap<UTTypeNumbers>;

  UTTypeIndex() = default;
  std::vector<const UTIndexedType*> types(const UTTypeNumbers& numbers) const;
  // Returns the declared types that a MIME type conforms to without a database.
  UTTypeNumbers tableParents(std::string_view mimeType) const;

  std::vector<UTIndexedType> types_;
  UTStringMap<UTTypeNumber> numbers_;
  TypesByName byMIMEType_;
  TypesByName byKind_;  // declared types, by the MIME types that are narrower
  UTFileNames names_;
};

/// Sets what each type conforms to, from its parents. Returns false with an error if there is a cycle or
/// there are too many pairs.
bool UTFindSupertypes(const std::vector<UTTypeNumbers>& parents, std::vector<UTIndexedType>& types,
                      NSRefPtr<NSError>* error);

/// How many pairs of a type and one that it conforms to an index may have.
constexpr std::size_t UTMaximumPairs = 100'000;

/// Sorts the numbers and removes those that are there twice.
void UTSort(UTTypeNumbers& numbers);
