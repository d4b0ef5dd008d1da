#pragma once

#include <cstddef>

/// The inner loops of strings, one set of them for each instruction set. All are pure and thread-safe.
///
/// They take pointers and counts: a kernel file is compiled for an instruction set that the machine may lack,
/// so it must not emit an inline function from a header, which the linker could then choose for all callers.
namespace NSKernels {

/// Returns the number of units before the first one that is not ASCII: `count` if all are.
template <class Unit>
using ASCIIPrefix = std::size_t(const Unit* units, std::size_t count);

/// Returns the number of units before the first one that equals the given one: `count` if none does.
using UnitsBefore = std::size_t(const char16_t* units, std::size_t count, char16_t unit);

/// Returns the length of well-formed input in the other encoding, in its units. For malformed input, returns
/// at least the length of its well-formed beginning.
///@{
using UTF16Length = std::size_t(const char* bytes, std::size_t count);
using UTF8Length = std::size_t(const char16_t* units, std::size_t count);
///@}

/// Converts between UTF-8 and UTF-16 (RFC 3629, RFC 2781) into `room`, which is at least the length that the
/// kernel above returns. Returns the number of bytes or units before the first malformed sequence or unpaired
/// surrogate: `count` if there is none. The output is meaningless unless it returns `count`.
///@{
using UTF16FromUTF8 = std::size_t(const char* bytes, std::size_t count, char16_t* units, std::size_t room);
using UTF8FromUTF16 = std::size_t(const char16_t* units, std::size_t count, char* bytes, std::size_t room);
///@}

/// All kernels of one instruction set.
struct UnicodeKernels {
  const char* name;
  ASCIIPrefix<char>* asciiBytes;
  ASCIIPrefix<char16_t>* asciiUnits;
  UnitsBefore* unitsBefore;
  UTF16Length* utf16Length;
  UTF16FromUTF8* utf16FromUTF8;
  UTF8Length* utf8Length;
  UTF8FromUTF16* utf8FromUTF16;
};

/// The definition: every other set writes the same units and rejects the same input at the same place.
extern const UnicodeKernels scalarKernels;

/// The sets for particular instruction sets. Only those of the target processor's family exist.
///@{
extern const UnicodeKernels avx2Kernels;
extern const UnicodeKernels avx512vbmiKernels;
extern const UnicodeKernels neonKernels;
///@}

/// Returns the number of bytes before the first malformed sequence that begins at `from` or later, where a
/// sequence may have begun up to three bytes earlier; `count` if there is none.
std::size_t wellFormedUTF8(const char* bytes, std::size_t count, std::size_t from);

}  // namespace NSKernels
