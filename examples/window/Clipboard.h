#pragma once

#include <QByteArray>
#include <QString>
#include <QTimer>

/// Puts passwords on the clipboard and takes them off again, unless something else was copied since.
class Clipboard {
 public:
  Clipboard();
  /// Takes off what is still there.
  ~Clipboard() { clear(); }

  void copy(const QString& password);
  /// Sets how long a password stays, in milliseconds: 30 seconds unless set.
  void setLimit(int limit) { timer_.setInterval(limit); }
  int limit() const { return timer_.interval(); }

 private:
  void clear();

  QTimer timer_;
  QByteArray digest_;  // of the password that is there, so that no copy of it is kept
};
