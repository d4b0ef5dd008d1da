#include <Foundation/NSLog.h>

#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <sstream>
#include <string>

namespace {

std::mutex sinkMutex;
NSLogSink& currentSink() {
  static NSLogSink& sink = *new NSLogSink;
  return sink;
}

void writeToStandardError(std::string_view line) {
  std::string rest(line);
  rest.push_back('\n');
  while (!rest.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return;  // there is nowhere left to report it
    if (written > 0) rest.erase(0, static_cast<std::size_t>(written));
  }
}

std::string oneLine(const NSString& entry) {
  std::ostringstream text;
  text << entry;
  std::string line;
  for (const char c : text.str()) {
    if (c == '\n')
      line += "\\n";
    else if (c == '\r')
      line += "\\r";
    else
      line += c;
  }
  return line;
}

}  // namespace

NSLogSink NSLogSetSink(NSLogSink sink) {
  const std::lock_guard lock(sinkMutex);
  return std::exchange(currentSink(), std::move(sink));
}

void NSLogString(const NSString& entry) {
  NSLogSink sink;
  {
    const std::lock_guard lock(sinkMutex);
    sink = currentSink();
  }
  const std::string line = oneLine(entry);
  sink ? sink(line) : writeToStandardError(line);
}
