#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// @file
/// Percent-encoding for pieces of URLs (RFC 3986, section 2.1). Only the unreserved characters (section
/// 2.3: letters, digits, "-", ".", "_", "~") stand for themselves; every other byte, the space included,
/// becomes "%" and two upper-case hexadecimal digits. All are pure and safe on any thread.

/// The bytes encoded, all of them ASCII; absent for nil.
NS_EXPORT NSRefPtr<NSData> VXURLEncodeData(const NSRefPtr<NSData>& data);

/// The bytes decoded: every escape, its digits in either case, becomes its byte, and all else stays, "+"
/// and bytes above 127 included. Absent for nil, and for a "%" without two hexadecimal digits after it.
NS_EXPORT NSRefPtr<NSData> VXURLDecodeData(const NSRefPtr<NSData>& data);

/// The UTF-8 of the text encoded; absent for nil, the empty text when a surrogate stands alone.
NS_EXPORT NSRefPtr<NSString> VXURLEncodeString(NSStringArg text);

/// The text that the decoded bytes are in UTF-8. Absent for nil, and when they are not UTF-8; the empty
/// text for a malformed escape or any character that is not ASCII. To tell a malformed text from an
/// empty one, use VXURLDecodeData.
NS_EXPORT NSRefPtr<NSString> VXURLDecodeString(NSStringArg text);
