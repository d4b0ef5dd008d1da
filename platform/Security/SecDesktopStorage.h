#pragma once

#include <Foundation/NSExport.h>

#include <chrono>
#include <memory>
#include <string>

#include <Security/SecStorage.h>

/// What a host lets the desktop's credential service do.
struct SecDesktopOptions {
  /// How long each call of the service may take; above 0.
  std::chrono::milliseconds callLimit{5000};
  /// How long the user has to answer a prompt; above 0.
  std::chrono::milliseconds promptLimit{60000};
  /// Whether the service may show prompts at all, such as one that asks for a keyring's password.
  bool allowsPrompts = true;
  /// The host's window, to which the service attaches its prompts, as its window system writes it, such as
  /// "x11:1c0000a"; empty for none. UTF-8 without NUL.
  std::string windowHandle;
};

/// The desktop's own credential service, org.freedesktop.secrets on the session bus. Entries are items of its
/// default collection, which other programs can find by their attributes; only items that this library made
/// are found, changed or removed. docs/credential-store.md says what it protects and what is not atomic.
///
/// Safe from any thread, and from any number of processes. After a fork the child connects anew. No thread is
/// started, no main loop needed. The service is one program and one collection: if that ends, the call in
/// progress fails with errSecIO or the next one with errSecServiceReplaced, and so does every call while
/// another program or collection has taken its place.
///
/// In addition to the statuses of each operation: errSecNotBuiltIn, errSecNoSessionBus, errSecNoService,
/// errSecNoAlgorithm, errSecNoSuchKeychain without a default collection, errSecInteractionRequired,
/// errSecUserCanceled, errSecInteractionNotAllowed when it stays locked, errSecTimedOut, errSecBusy when
/// another process holds the lock for changes (see setWaitLimit), errSecDecode for malformed replies and
/// items, and errSecParam for a string that services cannot hold: one with NUL, an unpaired surrogate, a
/// noncharacter or a leading byte-order mark.
class NS_EXPORT SecDesktopStorage final : public SecStorage {
 public:
  /// Makes a storage; the service is looked for when it is first used. Returns errSecParam for options that
  /// are out of range, and leaves `storage` untouched.
  static OSStatus open(const SecDesktopOptions& options, std::unique_ptr<SecDesktopStorage>& storage);
  ~SecDesktopStorage() override;

  /// Runs `work` as one transaction whose changes are sent after `work` has returned. A single addition or
  /// removal is atomic. An update, and a transaction of several changes, is not: if it fails midway, what has
  /// been done is undone where that takes no secret; otherwise the status is errSecIO.
  OSStatus transact(Access access, const Work& work) override;
  /// Names the program and the collection, and says whether that is locked; unlocks nothing. The number of
  /// entries of a locked collection is what the service shows of it.
  OSStatus copyInfo(SecStorageInfo& info) override;
  void setWaitLimit(std::chrono::milliseconds limit) override;

 private:
  class Implementation;
  explicit SecDesktopStorage(const SecDesktopOptions& options);

  const std::unique_ptr<Implementation> implementation_;
};
