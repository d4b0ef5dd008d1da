// The tool as a person meets it: each line of vectors/tool.tsv is a shell command with the exit status,
// the output and the message that it must give. $tool is the tool; the folder is empty to begin with.
#include <sys/wait.h>

#include <cstdlib>
#include <regex>

#include "Files.h"
#include "Support.h"

namespace {

class ToolTest : public testing::TestWithParam<std::vector<std::string>> {
 protected:
  int run(const std::string& command) {
    setenv("tool", VX_TOOL, 1);
    setenv("folder", folder_.root.c_str(), 1);
    setenv("LC_ALL", "C", 1);
    writeFile(folder_.root / "script", command + '\n');
    const int status =
        std::system("mkdir $folder/work; cd $folder/work && sh ../script </dev/null >../output 2>../message");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string written(const char* name) { return readFile(folder_.root / name); }

 private:
  TemporaryFolder folder_;
};

TEST_P(ToolTest, AnswersAsTheTableSays) {
  auto row = GetParam();
  row.resize(5);
  const auto& [command, status, output, message] = std::tie(row[1], row[2], row[3], row[4]);
  EXPECT_EQ(run(command), std::stoi(status)) << written("message");
  if (output != "*") {
    EXPECT_EQ(written("output"), output.empty() ? "" : output + '\n');
  }
  const std::string lines = message.empty() ? "" : "vxfoundation: " + message + '\n';
  EXPECT_TRUE(std::regex_match(written("message"), std::regex(lines))) << written("message");
}

INSTANTIATE_TEST_SUITE_P(Table, ToolTest, testing::ValuesIn(vectors("tool.tsv")),
                         [](const auto& test) { return test.param[0]; });

}  // namespace
