#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSErrorPresenter.h>

#include <optional>
#include <string_view>

#include "tool/Message.h"

/// Questions to the person at the terminal. They are written to the terminal itself, so that no part of them
/// is in the tool's output.

bool isOnTerminal();

/// Returns whether there is a person: whether the tool has a controlling terminal, wherever its input comes
/// from.
bool hasTerminal();

/// Asks for a secret without showing what is typed, at the controlling terminal if standard input is not a
/// terminal; asks again when the tool goes on after it was suspended.
/// The result is cleansed from memory after use. Throws Failure if the input ends first, or as
/// readSecretLine.
NSRef<NSData> askSecret(const Message& question);

/// Shows text at the terminal.
void showAtTerminal(std::string_view text);

/// Asks the person at the terminal a question until the answer is y or n, each time below a line with what
/// one must know to answer it, unless that is empty. Returns whether the answer is y, and false at the end of
/// the input.
bool agrees(const Message& question, const Message& background = "");

/// Reads one line from a descriptor, without its end; the result is cleansed from memory after use. Returns
/// nil at the end of the input. Throws Failure if it cannot be read, or if it was typed and so long that the
/// terminal may have cut it.
NSRefPtr<NSData> readSecretLine(int descriptor);

/// Shows an error and its options, numbered from 1, until one of them is chosen or the input ends.
class TerminalPresenter final : public NSErrorPresenter {
 protected:
  std::optional<std::size_t> choose(const NSError& error, const NSArray& localizedOptions) override;
};
