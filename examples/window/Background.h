#pragma once

#include <Foundation/NSError.h>

#include <QObject>
#include <QThread>
#include <functional>

/// The thread on which the program makes calls that may wait, one after another. For the window's thread.
class Background {
 public:
  /// Returns an error, nil on success. Runs on the other thread.
  using Work = std::function<NSRefPtr<NSError>()>;
  /// Takes the work's error. Runs on the window's thread.
  using Done = std::function<void(const NSRefPtr<NSError>& error)>;

  /// `waits` is called on the window's thread when the first call begins and when the last one has ended.
  explicit Background(std::function<void(bool)> waits);
  /// Lets the call in progress end; `done` of those that have not ended is not called.
  ~Background();

  /// Runs `work`, then `done`.
  void run(Work work, Done done);

 private:
  const std::function<void(bool)> waits_;
  int pending_ = 0;
  QObject here_;
  QObject there_;
  QThread thread_;
};
