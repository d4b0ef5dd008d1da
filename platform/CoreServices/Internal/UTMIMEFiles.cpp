#include <CoreServices/Internal/UTMIMEFiles.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace {

constexpr std::size_t largestFile = 1 << 20;
constexpr std::size_t largestTotal = 8 << 20;
constexpr std::size_t mostFolders = 64;

struct DatabaseFile {
  const char* name;
  std::string UTMIMEContents::*text;
};

constexpr std::array<DatabaseFile, 4> databaseFiles = {{{"/types", &UTMIMEContents::types},
                                                        {"/aliases", &UTMIMEContents::aliases},
                                                        {"/subclasses", &UTMIMEContents::subclasses},
                                                        {"/globs2", &UTMIMEContents::globs}}};

std::string_view variable(const char* name) {
  const char* const value = ::secure_getenv(name);
  return value ? value : "";
}

void addFolder(std::string_view dataFolder, std::vector<std::string>& folders) {
  if (!dataFolder.starts_with('/') || folders.size() == mostFolders) return;
  std::string folder = std::string(dataFolder).append("/mime");
  if (std::find(folders.begin(), folders.end(), folder) == folders.end())
    folders.push_back(std::move(folder));
}

bool isPlain(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_size <= static_cast<off_t>(largestFile);
}

/// Replaces the content by what can be read, at most as many bytes as it has.
void readInto(std::string& content, int descriptor) {
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t count = ::read(descriptor, content.data() + done, content.size() - done);
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  content.resize(done);
}

// Looks before it opens, since opening some devices has effects, and again at what was opened.
std::optional<std::string> readPlainFile(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !isPlain(status)) return std::nullopt;
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return std::nullopt;
  std::optional<std::string> content;
  if (::fstat(descriptor, &status) == 0 && isPlain(status)) {
    content.emplace(static_cast<std::size_t>(status.st_size), '\0');
    readInto(*content, descriptor);
  }
  ::close(descriptor);
  return content;
}

UTFileState stateOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size,
          std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

}  // namespace

std::vector<std::string> UTMIMEFolders() {
  std::vector<std::string> folders;
  const std::string_view dataHome = variable("XDG_DATA_HOME");
  addFolder(dataHome, folders);
  const std::string_view home = variable("HOME");
  if (!dataHome.starts_with('/') && !home.empty())
    addFolder(std::string(home).append("/.local/share"), folders);
  std::string_view others = variable("XDG_DATA_DIRS");
  if (others.empty()) others = "/usr/local/share:/usr/share";
  while (!others.empty()) {
    const std::string_view folder = others.substr(0, others.find(':'));
    addFolder(folder, folders);
    others.remove_prefix(std::min(folder.size() + 1, others.size()));
  }
  return folders;
}

std::vector<UTFileState> UTMIMEFileStates(const std::vector<std::string>& folders) {
  std::vector<UTFileState> states;
  for (const std::string& folder : folders)
    for (const DatabaseFile& file : databaseFiles) states.push_back(stateOf(folder + file.name));
  return states;
}

std::vector<UTMIMEContents> UTReadMIMEFiles(const std::vector<std::string>& folders) {
  std::vector<UTMIMEContents> all;
  std::size_t total = 0;
  for (const std::string& folder : folders) {
    UTMIMEContents& contents = all.emplace_back();
    for (const DatabaseFile& file : databaseFiles) {
      const auto content = readPlainFile(folder + file.name);
      if (!content || total + content->size() > largestTotal) continue;
      contents.*file.text = *content;
      total += content->size();
    }
  }
  return all;
}
