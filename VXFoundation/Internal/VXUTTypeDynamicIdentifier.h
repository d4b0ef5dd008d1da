#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// Unpacking of type identifiers of the dynamic form. The first five characters, "dyn.a", are dropped without
/// a check; a shorter identifier raises the range exception. Pure and thread-safe.

/// Returns the packed text: 5 bits per character, most significant first, in a special alphabet (otherwise as
/// in RFC 4648, section 6); bits left over at the end are ignored. Returns the empty string if the body has a
/// character that is not in the alphabet, padding that is not at its end, or a length that no bytes encode
/// to; nil if the bytes are not ASCII.
NSRefPtr<NSString> VXUTTypeDecodeDynamicIdentifier(const NSString& identifier);

/// Returns the pairs of the packed text, "key=value" separated by ":". The last value of a repeated key
/// counts; pieces that are not pairs are skipped. Returns nil if the text is nil.
NSRefPtr<NSDictionary> VXUTTypeDynamicIdentifierMap(const NSString& identifier);
