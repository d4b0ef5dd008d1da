#pragma once

#include <Security/SecFileStorage.h>
#include <VXFoundation/VXFoundation.h>

#include <QByteArray>
#include <QString>
#include <memory>

/// The store of choice, which the whole program uses. For the thread that makes the calls that wait.
class Store {
 public:
  /// Makes a store the one of choice: ":memory:", ":desktop:", the path of a file, or empty for the user's
  /// own file. Nothing changes if it cannot be opened.
  NSRefPtr<NSError> choose(const QString& place);

  /// Unlocks it; the passphrase is overwritten.
  NSRefPtr<NSError> unlock(QByteArray& passphrase);

 private:
  std::shared_ptr<SecFileStorage> file_;  // null if it is not a file
};
