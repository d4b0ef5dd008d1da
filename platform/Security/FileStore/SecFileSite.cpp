#include <Security/FileStore/SecFileSite.h>

SecFileFolder SecFileSite::openFolder() const {
  auto opened = secOpenFolder(folder, rule);
  secRequire(opened.has_value(), errSecNoSuchKeychain);
  return std::move(*opened);
}

SecFileOpenSite secFindSite(const SecFilePlace& place, bool makes) {
  const std::size_t end = place.store.rfind('/') + 1;  // 0 if there is no slash
  SecFileSite site{end == 0 ? "." : place.store.substr(0, end), place.store.substr(end), place.keyFolder,
                   place.credentialFolder};
  secRequire(!site.name.empty() && site.name.size() <= secLongestStoreName, errSecParam);
  if (place.ownsFolder) site.rule = SecFolderRule::own;
  if (place.allowSharedFolder) site.rule = SecFolderRule::any;
  const bool makesFolder = makes && place.ownsFolder;
  SecFileFolder folder = makesFolder ? secMakeFolder(site.folder, site.rule) : site.openFolder();
  site.folder = folder.path();
  return {std::move(site), std::move(folder)};
}
