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

/// Makes `app` the credential helper of git, which the tool is under another name (gitcredentials(7), "Custom
/// helpers").
void addGitHelper(CLI::App& app, Action& action);
