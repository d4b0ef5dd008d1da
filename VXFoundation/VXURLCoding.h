#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// @file
/// Percent-encoding for pieces of URLs (RFC 3986, section 2.1). Only the unreserved characters (section
/// 2.3: letters, digits, "-", ".", "_", "~") stand for themselves; every other byte, the space included,
/// becomes "%" and two upper-case hexadecimal digits. All functions are pure and thread-safe.

/// Encodes the bytes; the result is ASCII. Returns nil for nil.
[[nodiscard]] NS_EXPORT NSRefPtr<NSData> VXURLEncodeData(const NSRefPtr<NSData>& data);

/// Decodes the bytes: every escape, with digits in either case, becomes its byte; everything else is kept,
/// including "+" and bytes above 127. Returns nil for nil, and if a "%" is not followed by two hexadecimal
/// digits.
[[nodiscard]] NS_EXPORT NSRefPtr<NSData> VXURLDecodeData(const NSRefPtr<NSData>& data);

/// Encodes the string's UTF-8. Returns nil for nil, and the empty string if there is an unpaired surrogate.
[[nodiscard]] NS_EXPORT NSRefPtr<NSString> VXURLEncodeString(NSStringArg text);

/// Decodes the string and reads the resulting bytes as UTF-8. Returns nil for nil, and if those bytes are
/// malformed UTF-8; returns the empty string for a malformed escape or any character that is not ASCII. To
/// distinguish a malformed string from an empty one, use VXURLDecodeData.
[[nodiscard]] NS_EXPORT NSRefPtr<NSString> VXURLDecodeString(NSStringArg text);
