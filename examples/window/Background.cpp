#include "examples/window/Background.h"

#include <QCoreApplication>
#include <QEvent>

Background::Background(std::function<void(bool)> waits) : waits_(std::move(waits)) {}

Background::~Background() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void Background::run(Work work, Done done) {
  if (pending_++ == 0) waits_(true);
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back({std::move(work), std::move(done), nullptr});
  }
  changed_.notify_one();
}

void Background::makeCalls() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    if (ends_) return;
    Call call = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    call.error = call.work();
    lock.lock();
    ended_.push_back(std::move(call));
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  }
}

Background::Call Background::takeEnded() {
  const std::lock_guard lock(mutex_);
  Call call = std::move(ended_.front());
  ended_.pop_front();
  return call;
}

bool Background::event(QEvent* event) {
  if (event->type() != QEvent::User) return QObject::event(event);
  const Call call = takeEnded();
  if (--pending_ == 0) waits_(false);
  call.done(call.error);
  return true;
}
