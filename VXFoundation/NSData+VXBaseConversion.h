#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// NSData(VXBaseConversion): bytes as text in the notations of RFC 4648, and back. All are pure and safe
/// on any thread.
///
/// Decoders give absent, never a part, for what they do not accept: nil, a length that is not whole
/// groups, and any other character, white space and line breaks included. The empty text gives empty
/// bytes. Bits of the last digit that fill no byte are dropped unexamined: "QR==" decodes like "QQ==".
/// Encoders cannot fail; empty bytes give the empty text. What is made from a secret is one, too.
namespace VXBaseConversion {

/// Base 64 with the standard alphabet and padding, without line breaks (RFC 4648, section 4).
NS_EXPORT NSRef<NSString> base64String(const NSData& data);
/// dataWithBase64String: takes what `base64String` writes. Padding stands at the end alone, at most two.
NS_EXPORT NSRefPtr<NSData> dataWithBase64String(NSStringArg text);

/// Base 32 in upper case with padding, without line breaks (RFC 4648, section 6).
NS_EXPORT NSRef<NSString> base32String(const NSData& data);
/// dataWithBase32String: takes what `base32String` writes, in upper case only. Padding stands at the end
/// alone, in a run of 0, 1, 3, 4 or 6.
NS_EXPORT NSRefPtr<NSData> dataWithBase32String(NSStringArg text);

/// Base 16 in upper case, without prefix or separators (RFC 4648, section 8).
NS_EXPORT NSRef<NSString> base16String(const NSData& data);
/// dataWithBase16String: takes an even number of hexadecimal digits, in either case or both.
NS_EXPORT NSRefPtr<NSData> dataWithBase16String(NSStringArg text);

/// Eight binary digits and a space for every byte, the last one included, most significant bit first.
NS_EXPORT NSRef<NSString> base2String(const NSData& data);

}  // namespace VXBaseConversion
