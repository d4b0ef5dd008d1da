#pragma once

#include <Foundation/NSData.h>

#include <span>
#include <string>
#include <string_view>

/// Prevents files that the tool opens from taking the place of a standard stream that the caller closed, and
/// makes writing to a closed pipe, or beyond the limit for the size of a file, an ordinary error.
void guardStandardStreams();

/// Forbids core dumps, and other processes of the user to look into the tool's memory.
void guardSecrets();

/// Returns the whole content of a file, which is cleansed from memory after use. Throws Failure if it cannot
/// be read.
NSRef<NSData> readSecretFile(const std::string& path);

/// Returns all of standard input without one final newline; the result is cleansed from memory after use.
/// Throws Failure if it cannot be read.
NSRef<NSData> readSecretInput();

/// Thrown if standard output was closed by its reader, who wants no more and no message.
struct OutputClosed {};

/// Writes all of it to standard output. Throws OutputClosed, or Failure if that is not possible.
///@{
void writeStandardOutput(std::span<const std::byte> bytes);
void writeStandardOutput(std::string_view text);
///@}
/// Throws Failure for an error that the system reports only once a file is closed.
void endStandardOutput();
