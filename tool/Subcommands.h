#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>

/// What a subcommand does once its options are read; answers the exit status.
using Action = std::function<int()>;

/// Why a subcommand could not do its work, in one line for standard error. Ends the tool with status 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Each adds its subcommand to `app` and, once that is chosen on the command line, sets `action`.
void addEncode(CLI::App& app, Action& action);
void addDecode(CLI::App& app, Action& action);
void addDigest(CLI::App& app, Action& action);
void addKeychain(CLI::App& app, Action& action);
void addConforms(CLI::App& app, Action& action);
