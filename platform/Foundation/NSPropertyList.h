#pragma once

#include <span>
#include <string>

#include <Foundation/NSObject.h>

/// Reads an XML property list, the format of the files in bundles: dict and array become NSDictionary and
/// NSArray; true, false and integer become NSNumber; string, real, date and data become the NSString of their
/// content. Returns nil for anything that is not a well-formed property list of these elements, repeats a
/// key, has an internal subset or an entity that is not declared, nests deeper than 100 levels or is larger
/// than 16 MiB. Thread-safe.
NS_EXPORT NSRefPtr<NSObject> NSPropertyListWithData(std::span<const std::byte> xml);
/// The same for a file; returns nil also if the file cannot be read or is not a regular one, such as a pipe.
NS_EXPORT NSRefPtr<NSObject> NSPropertyListWithContentsOfFile(const std::string& path);
