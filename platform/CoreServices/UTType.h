#pragma once

#include <Foundation/NSError.h>

/// The domain of the errors that UTTypeDeclareTypesInFile reports.
NS_EXPORT extern const NSRef<NSString>& UTTypeErrorDomain;

/// The codes of those errors.
enum UTTypeError : std::int64_t {
  UTTypeErrorUnreadable = 1,  ///< the file is not a readable information file
  UTTypeErrorMalformed,       ///< a declaration is malformed
  UTTypeErrorItself,          ///< a type conforms to itself
  UTTypeErrorContradiction,   ///< a type is already declared differently
  UTTypeErrorCycle,           ///< types conform to one another
  UTTypeErrorTooMany,         ///< more than 100,000 pairs of a type and one that it conforms to
};

/// Returns whether the type is the other one or conforms to it, either by its declaration or because a type
/// that it conforms to does. A dynamic identifier of a tag conforms to what the tag stands for (see
/// UTTypeTags.h). Returns false if an argument is nil. Identifiers are compared exactly. A table of
/// well-known types is declared, and so are the exported types of the program's bundle; if these are refused,
/// the log says why. A query between declared types allocates memory only at the first call and for UTF-8.
/// Safe on any number of threads at once.
NS_EXPORT bool UTTypeConformsTo(NSStringArg type, NSStringArg otherType);

/// Return whether the type is declared, and whether its identifier has the dynamic form, "dyn.a" and more.
/// Return false for nil. Safe on any number of threads at once.
///@{
NS_EXPORT bool UTTypeIsDeclared(NSStringArg type);
NS_EXPORT bool UTTypeIsDynamic(NSStringArg type);
///@}

/// Declares for this process the types that an information file lists under UTExportedTypeDeclarations, each
/// with its UTTypeIdentifier, under UTTypeConformsTo one identifier or an array of identifiers, which need
/// not be declared themselves, and under UTTypeTagSpecification a dictionary of a string or an array of
/// strings for each tag class (see UTTypeTags.h), the preferred tag first. Declares all of them, or none and
/// returns false with an error. The path is used as UTF-8. Safe from any thread; queries see all of the types
/// or none.
NS_EXPORT bool UTTypeDeclareTypesInFile(NSStringArg path, NSRefPtr<NSError>* error = nullptr);
