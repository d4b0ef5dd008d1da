// The tool as a person at a terminal uses it; scripts/ToolTerminal.txt has the dialogues and their format.
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>

#include <csignal>
#include <cstdlib>
#include <optional>

#include "tests/support/Files.h"
#include "tests/support/Script.h"
#include "tests/support/Vectors.h"

namespace {

/// One run of a command on a terminal.
class TerminalRun {
 public:
  explicit TerminalRun(const std::string& command) {
    child_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (child_ != 0) return;
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  TerminalRun(const TerminalRun&) = delete;
  TerminalRun& operator=(const TerminalRun&) = delete;
  ~TerminalRun() { hangUp(); }

  /// Waits until the terminal shows `text` after what the last call waited for.
  void expect(const std::string& text) {
    while (shown_.find(text, waited_) == std::string::npos)
      if (!read()) FAIL() << "no '" << text << "' in: " << shown_;
    waited_ = shown_.find(text, waited_) + text.size();
  }

  void type(const std::string& keys) {
    ASSERT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }

  void send(const std::string& signal) {
    for (const auto& [name, number] : {std::pair("HUP", SIGHUP), {"STOP", SIGSTOP}, {"CONT", SIGCONT}})
      if (signal == name) kill(child_, number);
  }

  void hangUp() { close(std::exchange(terminal_, -1)); }

  /// Waits for the end; returns the exit status, or the negative number of the signal.
  int end() {
    while (isThere() && read()) continue;
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  bool echoes() const {
    termios settings = {};
    EXPECT_EQ(tcgetattr(terminal_, &settings), 0);
    return (settings.c_lflag & ECHO) != 0;
  }
  bool isThere() const { return terminal_ >= 0; }

  const std::string& shown() const { return shown_; }

 private:
  bool read() {
    pollfd ready = {terminal_, POLLIN, 0};
    char block[1024];
    const int events = isThere() ? poll(&ready, 1, 20000) : -1;
    if (events == 0) {
      ADD_FAILURE() << "neither an end nor anything more after: " << shown_;
      hangUp();
    }
    const ssize_t count = events == 1 ? ::read(terminal_, block, sizeof block) : -1;
    if (count <= 0) return false;
    shown_.append(block, static_cast<std::size_t>(count));
    return true;
  }

  int terminal_ = -1;
  pid_t child_ = -1;
  std::string shown_;
  std::size_t waited_ = 0;
};

/// The recovery passphrase that the tool showed last.
std::string recovery;

void noteRecovery(const std::string& shown) {
  const std::string rest = cut(shown, "Recovery passphrase: ").second;
  if (!rest.empty()) recovery = cut(rest, "\r").first;
}

/// Acts at a prompt: types keys, where "<N>" stands for N letters; "!NAME" sends a signal, "!hang up" closes
/// the terminal.
void act(TerminalRun& run, const std::string& keys) {
  noteRecovery(run.shown());
  if (keys == "!as shown\\x0a") return run.type(recovery + '\n');
  if (keys == "!hang up") return run.hangUp();
  if (keys.starts_with('!')) return run.send(keys.substr(1));
  if (!keys.starts_with('<')) return run.type(unescaped(keys));
  const auto [count, rest] = cut(keys.substr(1), ">");
  run.type(std::string(std::stoul(count), 'x') + unescaped(rest));
}

void expectStep(const std::string& step, const std::string& expected) {
  auto [command, dialogue] = cut(step, " ? ");
  const auto [status, ending] = cut(expected, " | ");
  std::vector<std::string> secrets;
  TerminalRun run(command);
  while (!dialogue.empty()) {
    const auto [exchange, rest] = cut(dialogue, " ? ");
    const auto [prompt, keys] = cut(exchange, " = ");
    const bool isSecret = prompt.find("ass") != prompt.npos;
    run.expect(unescaped(prompt));
    if (!prompt.empty()) {
      EXPECT_EQ(run.echoes(), !isSecret);
    }
    act(run, keys);
    if (isSecret) secrets.push_back(cut(keys, "\\x").first);
    dialogue = rest;
  }
  EXPECT_EQ(run.end(), std::stoi(status));
  if (!run.isThere()) return;
  EXPECT_TRUE(run.echoes());
  run.expect(ending);
  for (const std::string& secret : secrets)
    EXPECT_TRUE(secret.empty() || run.shown().find(secret) == std::string::npos) << "the secret was shown";
}

}  // namespace

TEST(ToolTerminal, FollowsTheScript) {
  std::optional<TemporaryFolder> folder;
  const auto begin = [&] {
    folder.emplace();
    const std::string store = "--keychain " + (folder->root / "store").string();
    unsetenv("VXFOUNDATION_KEYCHAIN");
    setenv("tool", VX_TOOL " keychain", 1);
    setenv("vectors", VX_TESTS "/vectors", 1);
    setenv("root", folder->root.c_str(), 1);
    setenv("store", store.c_str(), 1);
    setenv("entry", (store + " --account ann --service mail").c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder->root.c_str(), 1);
    setenv("LC_ALL", "C", 1);
  };
  EXPECT_GT(runScript("ToolTerminal.txt", begin, expectStep), 10u);
}
