#include <Security/SecDesktopStorage.h>

#include <Security/SecFailure.h>

#ifdef VX_HAS_DESKTOP_STORE

#include <Security/DesktopStore/SecDesktopStore.h>

class SecDesktopStorage::Implementation : public SecDesktopStore {
 public:
  using SecDesktopStore::SecDesktopStore;
};

#else

/// What takes the store's place in a build without libsystemd.
class SecDesktopStorage::Implementation {
 public:
  explicit Implementation(const SecDesktopOptions&) {}
  OSStatus transact(Access, const Work&) { return errSecNotBuiltIn; }
  OSStatus copyInfo(SecStorageInfo&) { return errSecNotBuiltIn; }
  void setWaitLimit(std::chrono::milliseconds) {}
};

#endif

namespace {

bool isInRange(const SecDesktopOptions& options) {
  return options.callLimit.count() > 0 && options.promptLimit.count() > 0 &&
         options.windowHandle.find('\0') == std::string::npos;
}

}  // namespace

SecDesktopStorage::SecDesktopStorage(const SecDesktopOptions& options)
    : implementation_(std::make_unique<Implementation>(options)) {}

SecDesktopStorage::~SecDesktopStorage() = default;

OSStatus SecDesktopStorage::open(const SecDesktopOptions& options,
                                 std::unique_ptr<SecDesktopStorage>& storage) {
  return secStatusOf([&] {
    secRequire(isInRange(options), errSecParam);
    storage.reset(new SecDesktopStorage(options));
  });
}

OSStatus SecDesktopStorage::transact(Access access, const Work& work) {
  return implementation_->transact(access, work);
}

OSStatus SecDesktopStorage::copyInfo(SecStorageInfo& info) { return implementation_->copyInfo(info); }

void SecDesktopStorage::setWaitLimit(std::chrono::milliseconds limit) {
  implementation_->setWaitLimit(limit);
}
