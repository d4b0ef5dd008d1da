#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>

/// A credential service of the test's own, in a process of its own: a keyring in memory that does what it
/// should, except for one fault. Its key exchange is real in form only: it shows the public value 2, and
/// gives secrets back as they were encrypted.
class FakeService {
 public:
  /// Owns the name when this returns.
  FakeService();
  FakeService(const FakeService&) = delete;
  FakeService& operator=(const FakeService&) = delete;
  ~FakeService() { kill(); }

  /// Lets the next call of `member` go wrong: "silent", "die", "wrong types", "no object", "stay locked",
  /// "fail" before or "fail late" after it was done, or "prompt" for an answer that is first asked for, which
  /// then is "prompt dismissed", "prompt silent" or "prompt die", or "bus gone". What concerns unlocking also
  /// locks.
  void breakNext(const std::string& member, const std::string& fault);
  void lock();
  void kill();

  int secretsGiven() const { return shared_->secretsGiven; }
  int changes() const { return shared_->changes; }
  int items() const { return shared_->items; }

 private:
  friend class FakeProcess;
  struct Shared {
    char member[32] = "";
    char fault[32] = "";
    std::atomic<bool> locked = false;
    std::atomic<int> secretsGiven = 0, changes = 0, items = 0;
  };

  Shared* shared_;
  pid_t process_ = 0;
};
