#pragma once

#include <map>
#include <set>
#include <string>

#include <CoreServices/UTType.h>

/// What is declared: each type with the ones that it says it conforms to.
using UTTypeDeclarations = std::map<std::u16string, std::set<std::u16string>>;

/// The types that are always declared.
UTTypeDeclarations UTBuiltInTypes();

/// Adds the exported types of an information file. Answers whether all of them are in order; an error says
/// why not, and the declarations are then of no use.
bool UTAddExportedTypes(const NSDictionary& information, UTTypeDeclarations& declarations,
                        NSRefPtr<NSError>* error);

/// By type, the set of all that it conforms to, itself included; absent with an error for a cycle.
NSRefPtr<NSDictionary> UTSupertypes(const UTTypeDeclarations& declarations, NSRefPtr<NSError>* error);

/// Stores an error where there is a place for one, and answers false.
bool UTRefuse(NSRefPtr<NSError>* error, UTTypeError code, NSStringArg reason);
