#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>

#include <string>

/// Questions to the person at the terminal, which is used when standard input is one. They are asked at the
/// terminal itself, so that nothing of them is in the tool's output.

bool isOnTerminal();

/// Asks for a secret without showing what is typed, to be cleansed from memory after use. Throws Failure
/// when the input ends first.
Ref<NSData> askSecret(const std::string& question);

/// One line of a descriptor, without its end, to be cleansed from memory after use. Throws Failure when it
/// cannot be read; absent at the end of the input.
RefPtr<NSData> readSecretLine(int descriptor);

/// Shows the options, numbered from 1, until one of them is chosen, and answers its index; NSNotFound at the
/// end of the input.
std::size_t choose(const std::string& question, const NSArray& options);
