#include "tool/UsageError.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace {

using Words = std::vector<std::string>;

/// Returns the subcommands that the command line reached, outermost first.
std::vector<CLI::App*> reached(CLI::App& app) {
  std::vector<CLI::App*> path{&app};
  for (auto chosen = app.get_subcommands(); !chosen.empty(); chosen = chosen.front()->get_subcommands())
    path.push_back(chosen.front());
  return path;
}

Words subcommandsOf(const CLI::App& app) {
  Words names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    if (!command->get_name().empty()) names.push_back(command->get_name());
  return names;
}

Words optionsOf(const std::vector<CLI::App*>& path) {
  Words names;
  for (const CLI::App* command : path)
    for (const CLI::Option* option : command->get_options())
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

/// Returns how many characters must be inserted, removed or replaced to make one word of the other.
std::size_t distance(const std::string& one, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (one[i] != other[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

std::string unknownWord(const char* what, const std::string& word, const Words& known) {
  const std::string message = std::string("there is no ") + what + " '" + word + "'";
  const auto nearest = std::ranges::min_element(
      known, {}, [&](const std::string& candidate) { return distance(word, candidate); });
  const bool isNear = nearest != known.end() && 2 * distance(word, *nearest) <= nearest->size();
  return isNear ? message + " (did you mean '" + *nearest + "'?)" : message;
}

std::string describe(CLI::App& app, const std::vector<CLI::App*>& path, const CLI::ParseError& error) {
  const Words unknown = app.remaining(true), subcommands = subcommandsOf(*path.back());
  if (unknown.empty()) return error.what();
  const std::string word = unknown.front().substr(0, unknown.front().find('='));
  if (word.starts_with("--")) return unknownWord("option", word, optionsOf(path));
  return subcommands.empty() ? error.what() : unknownWord("subcommand", word, subcommands);
}

}  // namespace

std::string explainUsageError(CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> path = reached(app);
  std::string help = "; see";
  for (const CLI::App* command : path) help += ' ' + command->get_name();
  return describe(app, path, error) + help + " --help";
}
