#pragma once

#include <Foundation/NSExport.h>

#include <string>
#include <string_view>

#include <Security/SecStatus.h>

/// Where the files of a store are.
struct SecFilePlace {
  std::string store;        ///< the store file
  std::string keyFolder;    ///< where key files are, each named by the id of its store
  bool ownsFolder = false;  ///< whether the store's folder is made, and kept private, by the store
};

/// The user's own store: VXFoundation/credentials.store in $XDG_DATA_HOME or ~/.local/share, its key in
/// VXFoundation/keys in $XDG_CONFIG_HOME or ~/.config. Variables that hold no absolute path count as not
/// set; without any, and without HOME, the answer is errSecNotAvailable. Nothing is made or read on the disk.
NS_EXPORT OSStatus secDefaultFilePlace(SecFilePlace& place);

/// A store file of the host's choice, in a folder that is there; its key is kept where the default store's
/// is. An empty path is errSecParam.
NS_EXPORT OSStatus secFilePlaceAt(std::string_view path, SecFilePlace& place);
