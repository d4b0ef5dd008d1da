#pragma once

#include <CLI/CLI.hpp>
#include <functional>

/// What a subcommand does once its options have been read; returns the exit status.
using Action = std::function<int()>;

/// Each adds its subcommand to `app`; choosing the subcommand on the command line sets `action`.
void addEncode(CLI::App& app, Action& action);
void addDecode(CLI::App& app, Action& action);
void addDigest(CLI::App& app, Action& action);
void addKeychain(CLI::App& app, Action& action);
void addConforms(CLI::App& app, Action& action);
void addType(CLI::App& app, Action& action);

/// Each makes `app` a credential helper, which the tool is under another name: of git (gitcredentials(7),
/// "Custom helpers") or of Docker (docker-credential-helpers).
///@{
void addGitHelper(CLI::App& app, Action& action);
void addDockerHelper(CLI::App& app, Action& action);
///@}
