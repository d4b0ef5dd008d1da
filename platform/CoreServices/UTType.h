#pragma once

#include <Foundation/NSError.h>

/// The domain of the errors of UTTypeDeclareTypesInFile.
NS_EXPORT extern const NSRef<NSString> UTTypeErrorDomain;

/// The codes of those errors: what the file holds.
enum UTTypeError : std::int64_t {
  UTTypeErrorUnreadable = 1,  ///< no information file
  UTTypeErrorMalformed,       ///< a declaration that is none
  UTTypeErrorItself,          ///< a type that conforms to itself
  UTTypeErrorContradiction,   ///< a type that is declared otherwise already
  UTTypeErrorCycle,           ///< types that conform to one another
  UTTypeErrorTooMany,         ///< more pairs of a type and one that it conforms to than 100,000
};

/// Whether the type is the other one, or one that conforms to it: by its declaration, or because a type
/// that it conforms to does. False for an absent argument. Identifiers are compared exactly. Declared are
/// a table of well-known types and the exported types of the program's bundle; where those are refused, the
/// log says why. Nothing is allocated but at the first call. For any number of threads at once.
NS_EXPORT bool UTTypeConformsTo(NSStringArg type, NSStringArg otherType);

/// Declares for this process the types that an information file lists under UTExportedTypeDeclarations,
/// each with its UTTypeIdentifier and, under UTTypeConformsTo, one identifier or a list of them, which need
/// not be declared themselves. All are declared or, with an error, none. The path is UTF-8. Safe from any
/// thread; queries see all of them or none.
NS_EXPORT bool UTTypeDeclareTypesInFile(NSStringArg path, NSRefPtr<NSError>* error = nullptr);
