#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

/// What a type identifier of the dynamic form packs. The first five characters, "dyn.a", are dropped
/// unseen; an identifier that is shorter raises the range exception. Pure functions, for any number of
/// threads at once.

/// The packed text: 5 bits a character, most significant first, in an alphabet of its own (otherwise as in
/// RFC 4648, section 6); bits left over at the end are not looked at. Empty for a body that is not of
/// the alphabet, has padding elsewhere than at its end or is of a length that no bytes give; absent when
/// the bytes are not ASCII.
NSRefPtr<NSString> VXUTTypeDecodeDynamicIdentifier(const NSString& identifier);

/// The pairs of the packed text, "key=value" with ":" between neighbours; of a repeated key the last, and
/// without the pieces that are no pair. Absent when the text is.
NSRefPtr<NSDictionary> VXUTTypeDynamicIdentifierMap(const NSString& identifier);
