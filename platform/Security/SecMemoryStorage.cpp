#include <Security/SecMemoryStorage.h>

#include <optional>
#include <utility>
#include <vector>

#include <Security/SecIdentity.h>

/// Keeps what each change displaced, and puts it back at the end unless the changes are kept.
class SecMemoryStorage::Transaction final : public SecTransaction {
 public:
  Transaction(SecMemoryStorage& storage, Access access) : storage_(storage), access_(access) {}
  ~Transaction() override;
  void keep() { displaced_.clear(); }

  OSStatus find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) override;
  OSStatus insert(const SecEntry& entry) override;
  OSStatus replace(std::int64_t number, const SecEntry& entry) override;
  OSStatus remove(std::int64_t number) override;

 private:
  using Entries = std::map<std::int64_t, SecEntry>;
  struct Displaced {
    std::int64_t number;
    Entries::node_type node;  // empty for a number that was free
  };

  OSStatus put(std::int64_t number, const SecEntry* entry);

  SecMemoryStorage& storage_;
  Access access_;
  std::vector<Displaced> displaced_;
};

SecMemoryStorage::Transaction::~Transaction() {
  for (auto displaced = displaced_.rbegin(); displaced != displaced_.rend(); ++displaced) {
    storage_.entries_.erase(displaced->number);
    if (displaced->node) storage_.entries_.insert(std::move(displaced->node));
  }
}

OSStatus SecMemoryStorage::Transaction::find(const SecAttributes& query,
                                             const std::function<bool(SecRow)>& visit) {
  for (const auto& [number, entry] : storage_.entries_) {
    if (!secMatches(query, entry.attributes)) continue;
    if (!visit({number, {entry.attributes, entry.secret.clone()}})) break;
  }
  return errSecSuccess;
}

OSStatus SecMemoryStorage::Transaction::insert(const SecEntry& entry) {
  return put(++storage_.lastNumber_, &entry);
}

OSStatus SecMemoryStorage::Transaction::replace(std::int64_t number, const SecEntry& entry) {
  return put(number, &entry);
}

OSStatus SecMemoryStorage::Transaction::remove(std::int64_t number) { return put(number, nullptr); }

OSStatus SecMemoryStorage::Transaction::put(std::int64_t number, const SecEntry* entry) {
  if (access_ != Access::change) return errSecReadOnly;
  displaced_.push_back({number, {}});
  displaced_.back().node = storage_.entries_.extract(number);
  if (entry) storage_.entries_.emplace(number, SecEntry{entry->attributes, entry->secret.clone()});
  return errSecSuccess;
}

OSStatus SecMemoryStorage::transact(Access access, const Work& work) {
  const std::lock_guard lock(mutex_);
  Transaction transaction(*this, access);
  const OSStatus status = work(transaction);
  if (status == errSecSuccess) transaction.keep();
  return status;
}

OSStatus SecMemoryStorage::copyInfo(SecStorageInfo& info) {
  const std::lock_guard lock(mutex_);
  info = {"memory", "ends with the process", entries_.size()};
  return errSecSuccess;
}
