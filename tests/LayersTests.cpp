// The arrows between the layers, read off the sources themselves: vectors/layers.tsv says for each folder
// what its files may include and which names they must not use.
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "Support.h"

namespace {

namespace fs = std::filesystem;

struct Layer {
  std::string folder, included, forbidden;
};

std::vector<Layer> readLayers() {
  std::vector<Layer> layers;
  for (auto& row : vectors("layers.tsv")) {
    row.resize(3);
    layers.push_back({row[0], row[1], row[2]});
  }
  return layers;
}

bool isSource(const fs::path& path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

std::vector<fs::path> sourcesIn(const fs::path& folder) {
  std::vector<fs::path> sources;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (isSource(entry.path())) sources.push_back(entry.path());
  }
  return sources;
}

/// Calls `each` with every line of code: what follows // is left out.
template <class Each>
void forEachLine(const fs::path& path, Each each) {
  std::ifstream file(path);
  int number = 0;
  for (std::string line; std::getline(file, line);) each(line.substr(0, line.find("//")), ++number);
}

std::string includedBy(const std::string& line) {
  static const std::regex directive(R"(\s*#\s*include\s*[<"]([^>"]+)[>"].*)");
  std::smatch match;
  return std::regex_match(line, match, directive) ? match[1].str() : "";
}

void PrintTo(const Layer& shown, std::ostream* stream) { *stream << shown.folder; }

class LayersTest : public testing::TestWithParam<Layer> {};

TEST_P(LayersTest, StandsOnWhatIsBelowItOnly) {
  const std::regex included(GetParam().included), forbidden(R"(\b()" + GetParam().forbidden + R"()\b)");
  const auto sources = sourcesIn(fs::path(VX_SOURCES) / GetParam().folder);
  ASSERT_FALSE(sources.empty());
  for (const auto& path : sources) {
    forEachLine(path, [&](const std::string& line, int number) {
      const std::string header = includedBy(line);
      EXPECT_TRUE(header.empty() || std::regex_match(header, included)) << path << ':' << number << line;
      EXPECT_FALSE(std::regex_search(line, forbidden)) << path << ':' << number << line;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(Folders, LayersTest, testing::ValuesIn(readLayers()), [](const auto& layer) {
  return std::regex_replace(layer.param.folder, std::regex("/"), "_");
});

TEST(LayersTest, EveryFolderOfSourcesHasItsRule) {
  std::set<fs::path> ruled, found;
  for (const auto& layer : readLayers()) ruled.insert(layer.folder);
  for (const char* top : {"VXFoundation", "platform", "tool", "examples"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(VX_SOURCES) / top)) {
      if (isSource(entry.path())) found.insert(fs::relative(entry.path().parent_path(), VX_SOURCES));
    }
  }
  EXPECT_EQ(found, ruled);
}

}  // namespace
