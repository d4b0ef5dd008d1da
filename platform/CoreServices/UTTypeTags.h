#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>

/// @file
/// Types of real files: the filename extensions and MIME types, together the tags, of types. Declared types
/// have the tags of their declarations, then those of the shared MIME database of freedesktop.org, which is
/// read from $XDG_DATA_HOME and $XDG_DATA_DIRS at first use and again after it has changed. The content of
/// files is not looked at. Tags are compared without regard to the case of ASCII letters, MIME types without
/// parameters. All functions return nil or false for nil, and are safe on any number of threads at once.

/// The classes of tags: filename extensions without the dot ("png", "tar.gz") and MIME types ("image/png").
///@{
NS_EXPORT extern const NSRef<NSString>& UTTagClassFilenameExtension;
NS_EXPORT extern const NSRef<NSString>& UTTagClassMIMEType;
///@}

/// Returns the identifier of the type that has the tag: the type that was declared first, otherwise one of
/// the MIME database. With `conformingTo`, returns the first one that conforms to that type. If there is
/// none, returns a dynamic identifier that packs the tag, and conforms to that type. Returns nil for an
/// unknown class and for a tag of which nothing is left without the parameters or that has an unpaired
/// surrogate.
NS_EXPORT NSRefPtr<NSString> UTTypeIdentifierForTag(NSStringArg tagClass, NSStringArg tag,
                                                    NSStringArg conformingTo = nullptr);

/// Returns the identifier of the type of a file with this name, which may have a path before it and need not
/// exist: by its whole name, such as "Makefile", by its longest known extension, by the MIME database's other
/// patterns, otherwise by a dynamic identifier of what follows its last dot. A dot at its start or its end
/// begins no extension; a name without one is of the type "public.data". Returns nil if the name has an
/// unpaired surrogate.
NS_EXPORT NSRefPtr<NSString> UTTypeIdentifierForFileName(NSStringArg name);

/// Return the tags of a type, in one class: all, the preferred one first, or that one. A dynamic identifier
/// has the tag that it packs, and those of the type for which that tag stands. Without tags, and for an
/// unknown class, the array is empty and the preferred tag is nil.
///@{
NS_EXPORT NSRefPtr<NSArray> UTTypeTags(NSStringArg type, NSStringArg tagClass);
NS_EXPORT NSRefPtr<NSString> UTTypePreferredTag(NSStringArg type, NSStringArg tagClass);
///@}
