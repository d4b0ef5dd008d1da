#include "examples/window/Background.h"

Background::Background(std::function<void(bool)> waits) : waits_(std::move(waits)) {
  there_.moveToThread(&thread_);
  thread_.start();
}

Background::~Background() {
  thread_.quit();
  thread_.wait();
}

void Background::run(Work work, Done done) {
  if (pending_++ == 0) waits_(true);
  const auto finish = [this, done = std::move(done)](const NSRefPtr<NSError>& error) {
    if (--pending_ == 0) waits_(false);
    done(error);
  };
  const auto perform = [this, work = std::move(work), finish] {
    const NSRefPtr<NSError> error = work();
    QMetaObject::invokeMethod(
        &here_, [finish, error] { finish(error); }, Qt::QueuedConnection);
  };
  QMetaObject::invokeMethod(&there_, perform, Qt::QueuedConnection);
}
