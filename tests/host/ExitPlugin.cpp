// What a host's plugin may ask of the library at any time, down to the last exit handler.
#include <VXFoundation/VXFoundation.h>

#include <Security/SecDefaultStorage.h>
#include <Security/SecMemoryStorage.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "at exit: %s\n", what);
  std::_Exit(1);
}

void failAnAssertion() {
  try {
    VXAdditions::vxfoundation_map(*NSArray::array(), nullptr);
    require(false, "the assertion handler returned");
  } catch (const NSException& exception) {
    require(exception.name()->isEqualToString(NSInternalInconsistencyException), exception.what());
  }
}

void addAndDelete() {
  static std::atomic<std::size_t> next = 0;  // no two threads use the same account
  const NSRef<NSString> account = NSString::stringWithFormat("%lu", next++);
  const auto item =
      NSRef(VXGenericKeychainItem::keychainItemWithUsername(account, "secret", nullptr, "mail"));
  NSRefPtr<NSError> error;
  require(item->addItemToKeychain() && item->deleteItemFromKeychain(), "the entry was not kept");
  require(!item->refreshItemFromKeychainIncludeData(true, &error), "the entry is still there");
  require(error->domain()->isEqualToString(VXFoundationBundleIdentifier), "the error is not the library's");
}

class OwnHandler : public NSAssertionHandler::Subclass<OwnHandler> {};

}  // namespace

extern "C" [[gnu::visibility("default")]] void start() {
  NSLogSetSink([](std::string_view) {});
  secSetDefaultStorage(std::make_shared<SecMemoryStorage>());
  CXHashing::MD5Hash(*NSData::data());  // from now on, libcrypto has an exit handler of its own
}

extern "C" [[gnu::visibility("default")]] void use() {
  failAnAssertion();
  NSAssertionHandler::setCurrentHandler(OwnHandler::alloc());
  failAnAssertion();
  addAndDelete();
  require(VXUTTypeConformsTo("dyn.ah62d4rv4ge81g5pe", "dyn.ah62d4rv4ge81g5pe"), "a type is not itself");
  require(VXUTTypeConformsTo("public.jpeg", "public.image"), "a declared type is lost");
  VXErrorRecoveryAttempter::errorRecoveryAttempter()->addCancelRecoveryOption();
}
