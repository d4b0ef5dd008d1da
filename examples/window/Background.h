#pragma once

#include <Foundation/NSError.h>

#include <QObject>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// The thread on which the program makes calls that may wait, one after another. For the window's thread.
class Background : public QObject {
 public:
  /// Returns an error, nil on success. Runs on the other thread.
  using Work = std::function<NSRefPtr<NSError>()>;
  /// Takes the work's error. Runs on the window's thread.
  using Done = std::function<void(const NSRefPtr<NSError>& error)>;

  /// `waits` is called on the window's thread when the first call begins and when the last one has ended.
  explicit Background(std::function<void(bool)> waits);
  /// Lets the call in progress end; those that wait are not made, and no `done` is called.
  ~Background() override;

  /// Runs `work`, then `done`.
  void run(Work work, Done done);

 protected:
  /// Takes the news that a call has ended.
  bool event(QEvent* event) override;

 private:
  struct Call {
    Work work;
    Done done;
    NSRefPtr<NSError> error;
  };

  void makeCalls();
  Call takeEnded();

  const std::function<void(bool)> waits_;
  int pending_ = 0;
  std::mutex mutex_;  // for all that follows
  std::condition_variable changed_;
  std::deque<Call> waiting_;
  std::deque<Call> ended_;
  bool ends_ = false;
  std::thread thread_{[this] { makeCalls(); }};
};
