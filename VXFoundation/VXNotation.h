#pragma once

/// How bytes are written as text, for VXEncoder and VXDecoder.
enum class VXNotation {
  base64,     ///< as VXBaseConversion's: the standard alphabet, with padding (RFC 4648, section 4)
  base64URL,  ///< with "-" and "_" for "+" and "/" (section 5); padding is written, but need not be there
  base32,     ///< as VXBaseConversion's: in upper case, with padding (section 6)
  base16,     ///< as VXBaseConversion's: written in upper case, read in either case (section 8)
  base2,      ///< as VXBaseConversion's: eight binary digits and a space for every byte; only written
  percent,    ///< as VXURLCoding's: percent-encoded bytes (RFC 3986, section 2.1)
};
