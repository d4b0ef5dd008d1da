// Checks the arrows between the layers in the sources: for each folder, vectors/layers.tsv says what its
// files may include and which names they must not use.
#include <filesystem>
#include <regex>
#include <set>

#include "tests/support/Vectors.h"

namespace {

namespace fs = std::filesystem;

bool isSource(const fs::path& path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

class LayersTest : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(LayersTest, DependsOnlyOnLayersBelow) {
  static const std::regex directive(R"(\s*#\s*include\s*[<"]([^>"]+)[>"].*)");
  const std::regex files(".*\\" + GetParam().at(1)), included(GetParam().at(2)),
      forbidden(R"(\b()" + GetParam().at(3) + R"()\b)");
  int sources = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(VX_SOURCES) / GetParam().at(0))) {
    if (!isSource(entry.path()) || !std::regex_match(entry.path().filename().string(), files)) continue;
    ++sources;
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      line.erase(std::min(line.find("//"), line.size()));  // comments are not code
      std::smatch header;
      const bool includes = std::regex_match(line, header, directive);
      EXPECT_TRUE(!includes || std::regex_match(header[1].str(), included)) << entry.path() << line;
      EXPECT_FALSE(std::regex_search(line, forbidden)) << entry.path() << line;
    }
  }
  EXPECT_GT(sources, 0);
}

INSTANTIATE_TEST_SUITE_P(Folders, LayersTest, testing::ValuesIn(vectors("layers.tsv")), [](const auto& row) {
  return std::regex_replace(row.param[0] + row.param[1], std::regex("[/.*]+"), "_");
});

TEST(LayersTest, EveryFolderOfSourcesHasARule) {
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
