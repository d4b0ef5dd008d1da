#pragma once

#include <Foundation/NSData.h>

#include <span>
#include <string>
#include <string_view>

/// Keeps files that the tool opens from taking the place of a standard stream that was closed by the
/// caller, and makes writing into a closed pipe an error like any other.
void guardStandardStreams();

/// The whole content of a file, to be cleansed from memory after use. Throws Failure when it cannot be read.
NSRef<NSData> readSecretFile(const std::string& path);

/// All of standard input, to its end. Throws Failure when it cannot be read.
NSRef<NSData> readStandardInput();

/// The same without one final newline, to be cleansed from memory after use.
NSRef<NSData> readSecretInput();

/// Writes to standard output, all of it. Throws Failure when that is not possible.
void writeStandardOutput(std::span<const std::byte> bytes);
void writeStandardOutput(std::string_view text);
