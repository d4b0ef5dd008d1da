#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <CoreServices/Internal/UTTag.h>
#include <CoreServices/UTType.h>

/// What the declaration of a type says. All strings are UTF-8.
struct UTTypeDeclaration {
  std::string identifier;
  std::set<std::string> conformsTo;
  UTTags tags;
  std::vector<std::string> kinds;  ///< MIME types that conform to the type, but are narrower than it
};

/// The declared types, in the order in which they were declared.
class UTTypeDeclarations {
 public:
  /// Returns the declaration of a type, or null if it has none.
  const UTTypeDeclaration* find(const std::string& identifier) const;
  /// Adds the declaration of a type that has none.
  void add(UTTypeDeclaration declaration);
  /// Returns all declarations.
  const std::vector<UTTypeDeclaration>& all() const { return all_; }

 private:
  std::vector<UTTypeDeclaration> all_;
  std::map<std::string, std::size_t> indexes_;
};

/// Returns the types that are always declared.
UTTypeDeclarations UTBuiltInTypes();

/// Adds the exported types of an information file. Returns whether all of them are valid; if not, the error
/// says why, and the declarations must be discarded.
bool UTAddExportedTypes(const NSDictionary& information, UTTypeDeclarations& declarations,
                        NSRefPtr<NSError>* error);

/// Stores an error if `error` is not null, and returns false.
bool UTRefuse(NSRefPtr<NSError>* error, UTTypeError code, NSStringArg reason);
