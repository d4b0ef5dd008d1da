#pragma once

#include <map>
#include <set>
#include <string>

#include <CoreServices/UTType.h>

/// The declared types, each with the types that its declaration says it conforms to.
using UTTypeDeclarations = std::map<std::u16string, std::set<std::u16string>>;

/// Returns the types that are always declared.
UTTypeDeclarations UTBuiltInTypes();

/// Adds the exported types of an information file. Returns whether all of them are valid; if not, the error
/// says why, and the declarations must be discarded.
bool UTAddExportedTypes(const NSDictionary& information, UTTypeDeclarations& declarations,
                        NSRefPtr<NSError>* error);

/// Returns, for each type, the set of all types that it conforms to, including itself. Returns nil with an
/// error if there is a cycle or there are too many such pairs.
NSRefPtr<NSDictionary> UTSupertypes(const UTTypeDeclarations& declarations, NSRefPtr<NSError>* error);

/// Stores an error if `error` is not null, and returns false.
bool UTRefuse(NSRefPtr<NSError>* error, UTTypeError code, NSStringArg reason);
