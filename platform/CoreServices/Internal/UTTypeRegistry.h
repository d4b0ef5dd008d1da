#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <CoreServices/Internal/UTMIMEFiles.h>
#include <CoreServices/Internal/UTPublished.h>
#include <CoreServices/Internal/UTTypeIndex.h>

/// The types of this process. Queries read an index without a lock; it is replaced when a host declares
/// types, and when the shared MIME database has changed, which is looked at no more than once a second. Safe
/// on any number of threads at once.
class UTTypeRegistry {
 public:
  using Reading = UTPublished<UTTypeIndex>::Reading;

  static UTTypeRegistry& shared();

  /// Returns access to the declared types alone.
  Reading declaredTypes() const { return declared_.read(); }
  /// Returns access to the declared types and those of the shared MIME database, which is read at the first
  /// call.
  Reading allTypes();
  /// Declares the exported types of an information file: all, or none with an error.
  bool declare(const NSDictionary& information, NSRefPtr<NSError>* error);

 private:
  UTTypeRegistry();
  bool isTimeToLook();
  void look();
  void publishAll();

  std::mutex mutex_;
  UTTypeDeclarations declarations_;
  UTPublished<UTTypeIndex> declared_;
  const std::vector<std::string> folders_;
  std::vector<UTFileState> states_;
  UTPublished<UTTypeIndex> all_;
  std::atomic<std::int64_t> nextLook_ = 0;
};
