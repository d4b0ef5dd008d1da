#pragma once

#include <CLI/CLI.hpp>
#include <string>

/// Says what is wrong with a command line, which word was probably meant if one is unknown, and where the
/// help of the subcommand is.
std::string explainUsageError(CLI::App& app, const CLI::ParseError& error);
