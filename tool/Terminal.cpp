#include "tool/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include "tool/Descriptor.h"
#include "tool/Failure.h"
#include "tool/Printable.h"

namespace {

Descriptor openTerminal() { return Descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)); }

void show(std::string_view text) {
  const Descriptor terminal = openTerminal();
  writeFully(terminal ? terminal.number() : STDIN_FILENO, std::as_bytes(std::span(text)));
}

/// What may end or suspend the tool, or let it go on, unless the caller ignores or blocks it.
sigset_t interruptions() {
  sigset_t signals, blocked;
  sigemptyset(&signals);
  sigprocmask(SIG_SETMASK, nullptr, &blocked);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGTSTP, SIGCONT}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN && sigismember(&blocked, signal) == 0) sigaddset(&signals, signal);
  }
  return signals;
}

/// A question whose answer the terminal does not show. Signals wait in the meantime and take effect, as they
/// would without the question, when the terminal shows again what is typed; if the tool goes on after that,
/// it asks again.
class HiddenQuestion {
 public:
  HiddenQuestion(const Message& question, int terminal)
      : question_(question.text()),
        terminal_(terminal),
        interruptions_(interruptions()),
        interrupted_(signalfd(-1, &interruptions_, SFD_CLOEXEC)) {
    if (interrupted_ < 0) failWithErrno("cannot wait for signals"_text);
    ask();
  }
  HiddenQuestion(const HiddenQuestion&) = delete;
  HiddenQuestion& operator=(const HiddenQuestion&) = delete;
  ~HiddenQuestion() {
    showInput();
    show("\n");
    close(interrupted_);
  }

  /// Waits until there is something to read. Returns false if a signal came first: what has been read so far
  /// is then not part of the answer.
  bool wait() {
    pollfd events[] = {{terminal_, POLLIN, 0}, {interrupted_, POLLIN, 0}};
    while (poll(events, 2, -1) < 0 && errno == EINTR) continue;
    if (events[1].revents == 0) return true;
    showInput();
    ask();
    return false;
  }

 private:
  void ask() {
    if (tcgetattr(terminal_, &original_) != 0) throw Failure("the terminal's settings cannot be read"_text);
    sigprocmask(SIG_BLOCK, &interruptions_, &before_);
    termios hidden = original_;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (tcsetattr(terminal_, TCSAFLUSH, &hidden) != 0)
      throw Failure("the terminal's echo cannot be turned off"_text);
    show(printable(question_) + ": ");
  }

  void showInput() {
    tcsetattr(terminal_, TCSANOW, &original_);
    sigprocmask(SIG_SETMASK, &before_, nullptr);  // signals that wait take effect here
  }

  std::string question_;
  int terminal_;
  sigset_t interruptions_;
  int interrupted_;
  termios original_{};
  sigset_t before_{};
};

/// From this length on, the terminal may have cut a line: it keeps no more of one.
constexpr std::size_t terminalLine = 4095;

NSRefPtr<NSData> checkedLine(const NSRef<NSMutableData>& line, int descriptor) {
  if (line->length() >= terminalLine && isatty(descriptor) == 1)
    throw Failure("a line of 4095 bytes or more may have been cut by the terminal; use a pipe"_text);
  return line;
}

/// Calls `wait` before it reads, and starts again if that returns false.
template <class Wait>
NSRefPtr<NSData> readLine(int descriptor, Wait&& wait) {
  const NSRef<NSMutableData> line = NSMutableData::data();
  line->setHoldsSecret(true);
  for (;;) {
    // One byte at a time: what follows the line may be for another reader.
    std::byte byte{};
    if (!wait()) {
      line->setLength(0);
      continue;
    }
    const ssize_t count = read(descriptor, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithErrno("cannot read the secret"_text);
    if (count == 0 && line->length() == 0) return nullptr;
    if (count == 0 || byte == std::byte{'\n'}) return checkedLine(line, descriptor);
    line->appendBytes(&byte, 1);
    explicit_bzero(&byte, 1);
  }
}

std::optional<std::size_t> optionOf(const NSData& line, std::size_t count) {
  const auto digits = line.bytes();
  if (digits.size() != 1) return std::nullopt;
  const auto number = static_cast<std::size_t>(digits[0]) - '0';
  return number >= 1 && number <= count ? std::optional(number - 1) : std::nullopt;
}

}  // namespace

bool isOnTerminal() { return isatty(STDIN_FILENO) == 1; }

bool hasTerminal() { return static_cast<bool>(openTerminal()); }

NSRefPtr<NSData> readSecretLine(int descriptor) {
  return readLine(descriptor, [] { return true; });
}

NSRef<NSData> askSecret(const Message& question) {
  const Descriptor controlling(isOnTerminal() ? -1 : open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY));
  const int terminal = controlling ? controlling.number() : STDIN_FILENO;
  HiddenQuestion hidden(question, terminal);
  const NSRefPtr<NSData> answer = readLine(terminal, [&] { return hidden.wait(); });
  if (!answer) throw Failure("nothing was entered"_text);
  return answer;
}

void showAtTerminal(std::string_view text) { show(text); }

bool agrees(const Message& question, const Message& background) {
  const std::string known = printable(background.text());
  for (;;) {
    if (!known.empty()) show(known + '\n');
    show(printable(question.text()) + " [y/n] ");
    const NSRefPtr<NSData> line = readSecretLine(STDIN_FILENO);
    if (!line) return show("\n"), false;
    const auto answer = line->bytes();
    const bool isYes = answer.size() == 1 && answer[0] == std::byte{'y'};
    if (isYes || (answer.size() == 1 && answer[0] == std::byte{'n'})) return isYes;
  }
}

std::optional<std::size_t> TerminalPresenter::choose(const NSError& error, const NSArray& localizedOptions) {
  for (;;) {
    show(printable(explain(error)) + '\n');
    for (std::size_t index = 0; index < localizedOptions.count(); ++index)
      show("  " + std::to_string(index + 1) + "  " +
           std::string(*localizedOptions.objectAtIndex(index)->description()) + '\n');
    show("Number"_text.text() + ": ");
    const NSRefPtr<NSData> answer = readSecretLine(STDIN_FILENO);
    if (!answer) return show("\n"), std::nullopt;
    if (const auto option = optionOf(*answer, localizedOptions.count())) return option;
  }
}
