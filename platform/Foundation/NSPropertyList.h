#pragma once

#include <span>
#include <string>

#include <Foundation/NSObject.h>

/// Reads an XML property list, as the files of bundles are: dict and array become NSDictionary and NSArray,
/// true, false and integer become NSNumber, and string, real, date and data become the NSString of their
/// content. What is no well-formed property list of a kind known here, repeats a key, declares entities
/// of its own, nests deeper than 100 or is larger than 16 MiB gives absent. Safe from any thread.
NS_EXPORT NSRefPtr<NSObject> NSPropertyListWithData(std::span<const std::byte> xml);
/// As above; a file that cannot be read gives absent, too.
NS_EXPORT NSRefPtr<NSObject> NSPropertyListWithContentsOfFile(const std::string& path);
