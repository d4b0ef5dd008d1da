#include "examples/window/Store.h"

#include <Security/SecDefaultStorage.h>
#include <VXFoundation/VXQt.h>

#include "examples/window/Errors.h"

namespace {

OSStatus open(const QString& place, std::unique_ptr<SecFileStorage>& file) {
  SecFilePlace files;
  const OSStatus found =
      place.isEmpty() ? secDefaultFilePlace(files) : secFilePlaceAt(place.toStdString(), files);
  return found == errSecSuccess ? SecFileStorage::open(files, SecFileStorage::Missing::make, file) : found;
}

}  // namespace

NSRefPtr<NSError> Store::choose(const QString& place) {
  if (place == ":memory:" || place == ":desktop:") {
    secSetDefaultStorage(place == ":memory:" ? SecStorageKind::memory : SecStorageKind::desktop);
    file_ = nullptr;
    return nullptr;
  }
  std::unique_ptr<SecFileStorage> file;
  const OSStatus status = open(place, file);
  if (status != errSecSuccess) return errorOf(status);
  file_ = std::move(file);
  secSetDefaultStorage(file_);
  return nullptr;
}

NSRefPtr<NSError> Store::unlock(QByteArray& passphrase) {
  const NSRef<NSData> secret = VXQt::data(passphrase);
  secret->setHoldsSecret(true);
  passphrase.fill('\0');
  return errorOf(file_ ? file_->unlock(secret->bytes()) : errSecAuthFailed);
}
