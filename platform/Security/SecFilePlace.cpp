#include <Security/SecFilePlace.h>

#include <cstdlib>

#include <Security/SecFailure.h>

namespace {

std::string folderFrom(const char* variable) {
  const char* const value = ::secure_getenv(variable);
  return value && value[0] == '/' ? value : std::string();
}

std::string baseFolder(const char* variable, const char* belowHome) {
  std::string folder = folderFrom(variable);
  if (!folder.empty()) return folder;
  const std::string home = folderFrom("HOME");
  secRequire(!home.empty(), errSecNotAvailable);
  return home + belowHome;
}

std::string keyFolder() { return baseFolder("XDG_CONFIG_HOME", "/.config") + "/VXFoundation/keys"; }

}  // namespace

OSStatus secDefaultFilePlace(SecFilePlace& place) {
  return secStatusOf([&] {
    const std::string folder = baseFolder("XDG_DATA_HOME", "/.local/share") + "/VXFoundation";
    place = {folder + "/credentials.store", keyFolder(), true, false, folderFrom("CREDENTIALS_DIRECTORY")};
  });
}

OSStatus secFilePlaceAt(std::string_view path, SecFilePlace& place) {
  return secStatusOf([&] {
    secRequire(!path.empty() && path.find('\0') == path.npos, errSecParam);
    secRequire(path.size() - (path.rfind('/') + 1) <= secLongestStoreName, errSecParam);
    place = {std::string(path), keyFolder(), false, false, folderFrom("CREDENTIALS_DIRECTORY")};
  });
}
