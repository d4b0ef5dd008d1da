#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSErrorPresenter.h>

#include <optional>
#include <string>

/// Questions to the person at the terminal, which is used when standard input is one. They are asked at the
/// terminal itself, so that nothing of them is in the tool's output.

bool isOnTerminal();

/// Asks for a secret without showing what is typed, to be cleansed from memory after use. Throws Failure
/// when the input ends first.
NSRef<NSData> askSecret(const std::string& question);

/// One line of a descriptor, without its end, to be cleansed from memory after use. Throws Failure when it
/// cannot be read; absent at the end of the input.
NSRefPtr<NSData> readSecretLine(int descriptor);

/// Shows an error and its options, numbered from 1, until one of them is chosen or the input ends.
class TerminalPresenter final : public NSErrorPresenter {
 protected:
  std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) override;
};
