#pragma once

#include <Foundation/NSExport.h>

#include <string>
#include <string_view>

#include <Security/SecStatus.h>

/// The longest name of a store file, in bytes: shorter than other files' names by what is added to it for the
/// files next to it.
constexpr std::size_t secLongestStoreName = 240;

/// Where the files of a store are.
struct SecFilePlace {
  std::string store;                  ///< the store file
  std::string keyFolder;              ///< where key files are, each named by a number in its store
  bool ownsFolder = false;            ///< whether the store makes its folder and insists that it is private
  bool allowSharedFolder = false;     ///< whether others may write to the folder of the store
  std::string credentialFolder = {};  ///< where a service manager puts a passphrase, or empty
};

/// Sets `place` to the user's own store: VXFoundation/credentials.store in $XDG_DATA_HOME or ~/.local/share,
/// its key in VXFoundation/keys in $XDG_CONFIG_HOME or ~/.config. A variable that does not hold an absolute
/// path counts as unset. Returns errSecNotAvailable if HOME is needed in place of another variable and is
/// unset too. The credential folder is $CREDENTIALS_DIRECTORY. Nothing is made or read on the disk.
NS_EXPORT OSStatus secDefaultFilePlace(SecFilePlace& place);

/// Sets `place` to a store file of the host's choice, in an existing folder; its key is kept where the
/// default store's key is. Returns errSecParam for an empty path, and for one with a NUL or a file name
/// longer than secLongestStoreName.
NS_EXPORT OSStatus secFilePlaceAt(std::string_view path, SecFilePlace& place);
