#include <Security/DesktopStore/SecDesktopSession.h>

SecDesktopSession::SecDesktopSession(const SecDesktopOptions& options)
    : bus_(options.callLimit),
      service_(bus_),
      transfer_(service_),
      collection_(service_),
      prompt_(service_, options),
      items_(service_, transfer_, prompt_) {}

void SecDesktopSession::requireService() {
  bool current = false;
  const OSStatus status = secStatusOf([&] { current = service_.isCurrent(); });
  secRequire(status == errSecSuccess || status == errSecIO, status);
  secRequire(current, errSecServiceReplaced);
}

void SecDesktopSession::requireBelievable() {
  secRequire(!collection_.isLocked(), errSecInteractionNotAllowed);
  requireService();
}
