#include "tool/Terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include "tool/Failure.h"

namespace {

termios originalSettings;

void restoreEcho() { tcsetattr(STDIN_FILENO, TCSANOW, &originalSettings); }

/// Hidden echo must be restored however the tool ends.
void restoreEchoAndEnd(int signal) {
  restoreEcho();
  std::raise(signal);
}

class HiddenEcho {
 public:
  HiddenEcho() {
    if (tcgetattr(STDIN_FILENO, &originalSettings) != 0)
      throw Failure("the terminal's settings cannot be read");
    for (const int signal : endings) install(signal, restoreEchoAndEnd);
    termios hidden = originalSettings;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden) != 0)
      throw Failure("the terminal's echo cannot be turned off");
  }
  HiddenEcho(const HiddenEcho&) = delete;
  HiddenEcho& operator=(const HiddenEcho&) = delete;
  ~HiddenEcho() {
    restoreEcho();
    for (const int signal : endings) install(signal, SIG_DFL);
  }

 private:
  static constexpr int endings[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

  static void install(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    sigaction(signal, &action, nullptr);
  }
};

int openTerminal() { return open("/dev/tty", O_WRONLY | O_CLOEXEC | O_NOCTTY); }

void show(std::string_view text) {
  const int terminal = openTerminal();
  while (!text.empty()) {
    const ssize_t count = write(terminal < 0 ? STDIN_FILENO : terminal, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  if (terminal >= 0) close(terminal);
}

std::optional<std::size_t> optionOf(const NSData& line, std::size_t count) {
  const auto digits = line.bytes();
  if (digits.size() != 1) return std::nullopt;
  const auto number = static_cast<std::size_t>(digits[0]) - '0';
  return number >= 1 && number <= count ? std::optional(number - 1) : std::nullopt;
}

}  // namespace

bool isOnTerminal() { return isatty(STDIN_FILENO) == 1; }

bool hasTerminal() {
  const int terminal = openTerminal();
  if (terminal >= 0) close(terminal);
  return terminal >= 0;
}

NSRefPtr<NSData> readSecretLine(int descriptor) {
  const NSRef<NSMutableData> line = NSMutableData::data();
  line->setHoldsSecret(true);
  for (;;) {
    // One byte at a time: what follows the line may be for another reader.
    std::byte byte{};
    const ssize_t count = read(descriptor, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw Failure(std::string("cannot read the secret: ") + std::strerror(errno));
    if (count == 0) return line->length() > 0 ? NSRefPtr<NSData>(line) : nullptr;
    if (byte == std::byte{'\n'}) return line;
    line->appendBytes(&byte, 1);
    explicit_bzero(&byte, 1);
  }
}

NSRef<NSData> askSecret(const std::string& question) {
  NSRefPtr<NSData> answer;
  {
    const HiddenEcho hidden;
    show(question + ": ");
    answer = readSecretLine(STDIN_FILENO);
  }
  show("\n");
  if (!answer) throw Failure("nothing was entered");
  return answer;
}

std::optional<std::size_t> TerminalPresenter::choose(const NSError& error, const NSArray& localizedOptions) {
  for (;;) {
    show(explain(error) + '\n');
    for (std::size_t index = 0; index < localizedOptions.count(); ++index)
      show("  " + std::to_string(index + 1) + "  " +
           std::string(*localizedOptions.objectAtIndex(index)->description()) + '\n');
    show("Number: ");
    const NSRefPtr<NSData> answer = readSecretLine(STDIN_FILENO);
    if (!answer) return show("\n"), std::nullopt;
    if (const auto option = optionOf(*answer, localizedOptions.count())) return option;
  }
}
