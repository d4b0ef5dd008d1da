#include <Foundation/Internal/NSLoadedCode.h>

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <string_view>

namespace {

namespace files = std::filesystem;

// Returns an empty string if there is no such file.
std::string folderOf(const files::path& file) {
  std::error_code error;
  return files::canonical(file, error).parent_path().string();
}

// The kernel marks the name of a program whose file was removed or replaced.
std::string folderOfProgram() {
  constexpr std::string_view mark = " (deleted)";
  std::error_code error;
  std::string name = files::read_symlink("/proc/self/exe", error).string();
  if (!name.starts_with('/')) return {};
  if (name.ends_with(mark) && !files::exists(name, error)) name.resize(name.size() - mark.size());
  return folderOf(name);
}

std::string folderOfLibrary() {
  Dl_info info{};
  return dladdr(reinterpret_cast<const void*>(&NSFolderOfLibrary), &info) != 0 ? folderOf(info.dli_fname)
                                                                               : std::string();
}

struct Folders {
  const std::string program = folderOfProgram();
  const std::string library = folderOfLibrary();
};

const Folders& folders() {
  static const Folders& atLoad = *new Folders;
  return atLoad;
}

[[gnu::constructor]] void determineAtLoad() { folders(); }

}  // namespace

const std::string& NSFolderOfProgram() { return folders().program; }

const std::string& NSFolderOfLibrary() { return folders().library; }

std::vector<std::string> NSFoldersOfLoadedLibraries() {
  std::vector<std::string> all;
  dl_iterate_phdr(
      [](dl_phdr_info* image, std::size_t, void* found) {
        const std::string_view name = image->dlpi_name ? image->dlpi_name : "";
        if (name.starts_with('/')) static_cast<std::vector<std::string>*>(found)->push_back(folderOf(name));
        return 0;
      },
      &all);
  std::erase(all, std::string());
  return all;
}
