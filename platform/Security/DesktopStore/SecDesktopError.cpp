#include <Security/DesktopStore/SecDesktopError.h>

#include <algorithm>
#include <cerrno>
#include <span>

namespace {

struct Meaning {
  std::string_view error;
  OSStatus status;
};

constexpr Meaning meanings[] = {
    {"org.freedesktop.DBus.Error.Timeout", errSecTimedOut},
    {"org.freedesktop.DBus.Error.TimedOut", errSecTimedOut},
    {"org.freedesktop.DBus.Error.NoMemory", errSecAllocate},
    {"org.freedesktop.DBus.Error.LimitsExceeded", errSecDataTooLarge},
    {"org.freedesktop.DBus.Error.InconsistentMessage", errSecDecode},
    {"System.Error.EBADMSG", errSecDecode},
    {"org.freedesktop.Secret.Error.IsLocked", errSecInteractionNotAllowed},
};

constexpr std::string_view noReply[] = {
    "org.freedesktop.DBus.Error.Timeout",        "org.freedesktop.DBus.Error.NoReply",
    "org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
    "org.freedesktop.DBus.Error.Disconnected",   "org.freedesktop.DBus.Error.NoMemory",
};

constexpr std::string_view missingObject[] = {
    "org.freedesktop.DBus.Error.UnknownObject",
    "org.freedesktop.DBus.Error.UnknownMethod",
    "org.freedesktop.DBus.Error.UnknownInterface",
    "org.freedesktop.Secret.Error.NoSuchObject",
};

bool contains(std::span<const std::string_view> names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

OSStatus secDesktopStatus(std::string_view errorName) {
  for (const Meaning& meaning : meanings)
    if (meaning.error == errorName) return meaning.status;
  return errSecIO;
}

bool secIsNoReply(std::string_view errorName) {
  return errorName.starts_with("System.Error.") || contains(noReply, errorName);
}

bool secIsMissingObject(std::string_view errorName) { return contains(missingObject, errorName); }

void secCheckWritten(int result) {
  secRequire(result != -ENOMEM, errSecAllocate);
  secRequire(result >= 0, result == -EINVAL ? errSecParam : errSecDataTooLarge);
}

int secCheckRead(int result) {
  secRequire(result != -ENOMEM, errSecAllocate);
  secRequire(result >= 0, errSecDecode);
  return result;
}
