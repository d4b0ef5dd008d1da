#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// NSData(VXBaseConversion): encodes bytes as text in the notations of RFC 4648, and decodes them. All
/// functions are pure and thread-safe.
///
/// Decoders return nil, never a partial result, for input that they do not accept: nil, a length that is not
/// a whole number of groups, and any character outside the notation, including white space and line breaks.
/// The empty string decodes to empty data. Bits of the last digit that do not fill a byte are dropped
/// unexamined: "QR==" decodes like "QQ==". Encoders cannot fail; empty data encodes to the empty string. The
/// result of converting a secret is marked as a secret, too.
namespace VXBaseConversion {

/// Encodes in base 64 with the standard alphabet and padding, without line breaks (RFC 4648, section 4).
NS_EXPORT NSRef<NSString> base64String(const NSData& data);
/// dataWithBase64String:. Decodes what `base64String` returns. Padding is accepted only at the end, at most
/// two characters.
[[nodiscard]] NS_EXPORT NSRefPtr<NSData> dataWithBase64String(NSStringArg text);

/// Encodes in base 32, in upper case with padding, without line breaks (RFC 4648, section 6).
NS_EXPORT NSRef<NSString> base32String(const NSData& data);
/// dataWithBase32String:. Decodes what `base32String` returns, in upper case only. Padding is accepted only
/// at the end, in a run of 0, 1, 3, 4 or 6 characters.
[[nodiscard]] NS_EXPORT NSRefPtr<NSData> dataWithBase32String(NSStringArg text);

/// Encodes in base 16, in upper case, without prefix or separators (RFC 4648, section 8).
NS_EXPORT NSRef<NSString> base16String(const NSData& data);
/// dataWithBase16String:. Decodes an even number of hexadecimal digits, in either case or both.
[[nodiscard]] NS_EXPORT NSRefPtr<NSData> dataWithBase16String(NSStringArg text);

/// Returns eight binary digits and a space for every byte, including the last one, most significant bit
/// first.
NS_EXPORT NSRef<NSString> base2String(const NSData& data);

}  // namespace VXBaseConversion
