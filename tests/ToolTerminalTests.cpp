// The tool as a person at a terminal meets it.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

/// One run of the tool on a terminal of its own.
class TerminalRun {
 public:
  explicit TerminalRun(const std::string& arguments) {
    child_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (child_ != 0) return;
    const std::string command = std::string("exec " VX_TOOL " keychain ") + arguments + " 2>&1";
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  TerminalRun(const TerminalRun&) = delete;
  TerminalRun& operator=(const TerminalRun&) = delete;
  ~TerminalRun() { close(terminal_); }

  /// Waits until the terminal shows `text`, after what was waited for before.
  void expect(const std::string& text) {
    while (shown_.find(text, waited_) == std::string::npos)
      if (!read()) FAIL() << "no '" << text << "' in: " << shown_;
    waited_ = shown_.find(text, waited_) + text.size();
  }

  void type(const std::string& keys) {
    ASSERT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }

  /// The exit status, or minus the signal.
  int end() {
    while (read()) continue;
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  bool echoes() const {
    termios settings = {};
    EXPECT_EQ(tcgetattr(terminal_, &settings), 0);
    return (settings.c_lflag & ECHO) != 0;
  }

  const std::string& shown() const { return shown_; }

 private:
  bool read() {
    pollfd ready = {terminal_, POLLIN, 0};
    char block[1024];
    const ssize_t count = poll(&ready, 1, 20000) == 1 ? ::read(terminal_, block, sizeof block) : -1;
    if (count <= 0) return false;
    shown_.append(block, static_cast<std::size_t>(count));
    return true;
  }

  int terminal_ = -1;
  pid_t child_ = -1;
  std::string shown_;
  std::size_t waited_ = 0;
};

class ToolTerminalTest : public testing::Test {
 protected:
  ToolTerminalTest() {
    std::string pattern = fs::temp_directory_path() / "vxfoundation-terminal-XXXXXX";
    folder_ = mkdtemp(pattern.data());
    setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    setenv("LC_ALL", "C", 1);
  }
  ~ToolTerminalTest() override { fs::remove_all(folder_); }

  std::string entry() const {
    return " --keychain " + (folder_ / "store").string() + " --account ann --service mail";
  }
  std::string store() const { return " --keychain " + (folder_ / "store").string(); }

  /// Adds the entry with a password, and answers as given when it is there.
  int add(const std::string& password, const std::string& choice = "") {
    TerminalRun run("add" + entry());
    run.expect("Password: ");
    run.type(password + "\n");
    if (!choice.empty()) {
      run.expect("duplicate");
      run.expect("1  Replace\r\n  2  Cancel\r\nNumber: ");
      run.type(choice);
    }
    const int status = run.end();
    EXPECT_EQ(run.shown().find(password), std::string::npos) << "the password was shown";
    return status;
  }

  std::string password() {
    TerminalRun run("show --password" + entry());
    EXPECT_EQ(run.end(), 0);
    return run.shown();
  }

 private:
  fs::path folder_;
};

}  // namespace

TEST_F(ToolTerminalTest, AnEntryThatExistsIsReplacedOrKept) {
  EXPECT_EQ(add("first-secret"), 0);
  EXPECT_EQ(add("second-secret", "2\n"), 1);
  EXPECT_EQ(add("second-secret", "\x04"), 1) << "the end of the input cancels";
  EXPECT_EQ(password(), "first-secret\r\n");
  EXPECT_EQ(add("second-secret", "0\n3\n11\nReplace\n\n1\n"), 0) << "asked until an option is chosen";
  EXPECT_EQ(password(), "second-secret\r\n");
}

TEST_F(ToolTerminalTest, TheTerminalEchoesAgainHoweverTheQuestionEnds) {
  for (const auto& [keys, ending] : {std::pair("secret\n", 0), {"\x04", 1}, {"\x03", -SIGINT}}) {
    TerminalRun run("add" + entry());
    run.expect("Password: ");
    EXPECT_FALSE(run.echoes());
    run.type(keys);
    EXPECT_EQ(run.end(), ending);
    EXPECT_TRUE(run.echoes());
  }
}

TEST_F(ToolTerminalTest, APassphraseIsAskedForTwiceAndThenOpensTheStore) {
  EXPECT_EQ(add("first-secret"), 0);
  for (const auto& [again, ending] : {std::pair("other\n", 1), {"pass phrase\n", 0}}) {
    TerminalRun run("passphrase" + store());
    run.expect("New passphrase: ");
    run.type("pass phrase\n");
    run.expect("The same again: ");
    run.type(again);
    EXPECT_EQ(run.end(), ending);
  }
  TerminalRun run("show --password" + entry());
  run.expect("Passphrase of ");
  run.type("pass phrase\n");
  EXPECT_EQ(run.end(), 0);
  run.expect("first-secret");
}
