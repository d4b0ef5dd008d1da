// The arrows between the layers, read off the sources themselves: vectors/layers.tsv says for each folder
// what its files may include and which names they must not use.
#include <filesystem>
#include <regex>
#include <set>

#include "Support.h"

namespace {

namespace fs = std::filesystem;

bool isSource(const fs::path& path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

class LayersTest : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(LayersTest, StandsOnWhatIsBelowItOnly) {
  static const std::regex directive(R"(\s*#\s*include\s*[<"]([^>"]+)[>"].*)");
  const std::regex included(GetParam().at(1)), forbidden(R"(\b()" + GetParam().at(2) + R"()\b)");
  int sources = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(VX_SOURCES) / GetParam().at(0))) {
    if (!isSource(entry.path())) continue;
    ++sources;
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      line.erase(std::min(line.find("//"), line.size()));  // comments are no code
      std::smatch header;
      const bool includes = std::regex_match(line, header, directive);
      EXPECT_TRUE(!includes || std::regex_match(header[1].str(), included)) << entry.path() << line;
      EXPECT_FALSE(std::regex_search(line, forbidden)) << entry.path() << line;
    }
  }
  EXPECT_GT(sources, 0);
}

INSTANTIATE_TEST_SUITE_P(Folders, LayersTest, testing::ValuesIn(vectors("layers.tsv")), [](const auto& row) {
  return std::regex_replace(row.param[0], std::regex("/"), "_");
});

TEST(LayersTest, EveryFolderOfSourcesHasItsRule) {
  std::set<fs::path> ruled, found;
  for (const auto& row : vectors("layers.tsv")) ruled.insert(row[0]);
  for (const char* top : {"VXFoundation", "platform", "tool", "examples"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(VX_SOURCES) / top)) {
      if (isSource(entry.path())) found.insert(fs::relative(entry.path().parent_path(), VX_SOURCES));
    }
  }
  EXPECT_EQ(found, ruled);
}

}  // namespace
