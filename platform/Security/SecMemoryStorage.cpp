#include <Security/SecMemoryStorage.h>

#include <optional>
#include <utility>
#include <vector>

#include <Security/SecFailure.h>
#include <Security/SecIdentity.h>

/// Remembers what each change displaced, and puts it back at the end unless the changes are kept.
class SecMemoryStorage::Transaction final : public SecTransaction {
 public:
  Transaction(SecMemoryStorage& storage, Access access) : storage_(storage), access_(access) {}
  ~Transaction() override;
  void keep() { displaced_.clear(); }

  void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override;
  void insert(const SecEntry& entry) override;
  void replace(std::int64_t number, const SecAttributes& attributes,
               const std::optional<SecSecret>& secret) override;
  void remove(std::int64_t number) override;

 private:
  using Entries = std::map<std::int64_t, SecEntry>;
  struct Displaced {
    std::int64_t number;
    Entries::node_type node;  // empty for a number that was free
  };

  void put(std::int64_t number, std::optional<SecEntry> entry);
  void requireUnique(std::int64_t number, const SecAttributes& attributes) const;

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

void SecMemoryStorage::Transaction::find(const SecQuery& query, SecSecrets secrets,
                                         const std::function<bool(SecRow)>& visit) {
  for (const auto& [number, entry] : storage_.entries_) {
    if (!secMatches(query, entry.attributes)) continue;
    SecRow row{number, {entry.attributes, {}}};
    if (secrets == SecSecrets::read) row.entry.secret = entry.secret.clone();
    if (!visit(std::move(row))) break;
  }
}

void SecMemoryStorage::Transaction::insert(const SecEntry& entry) {
  requireUnique(0, entry.attributes);
  put(++storage_.lastNumber_, SecEntry{entry.attributes, entry.secret.clone()});
}

void SecMemoryStorage::Transaction::replace(std::int64_t number, const SecAttributes& attributes,
                                            const std::optional<SecSecret>& secret) {
  requireUnique(number, attributes);
  put(number, SecEntry{attributes, (secret ? *secret : storage_.entries_.at(number).secret).clone()});
}

void SecMemoryStorage::Transaction::remove(std::int64_t number) { put(number, std::nullopt); }

void SecMemoryStorage::Transaction::put(std::int64_t number, std::optional<SecEntry> entry) {
  secRequire(access_ == Access::change, errSecReadOnly);
  displaced_.push_back({number, {}});
  displaced_.back().node = storage_.entries_.extract(number);
  if (entry) storage_.entries_.emplace(number, std::move(*entry));
}

void SecMemoryStorage::Transaction::requireUnique(std::int64_t number,
                                                  const SecAttributes& attributes) const {
  const SecQuery query{attributes, true};
  for (const auto& [other, held] : storage_.entries_)
    secRequire(other == number || !secMatches(query, held.attributes), errSecDuplicateItem);
}

OSStatus SecMemoryStorage::transact(Access access, const Work& work) {
  return secStatusOf([&] {
    const std::lock_guard lock(mutex_);
    Transaction transaction(*this, access);
    work(transaction);
    transaction.keep();
  });
}

OSStatus SecMemoryStorage::copyInfo(SecStorageInfo& info) {
  return secStatusOf([&] {
    const std::lock_guard lock(mutex_);
    info = {"memory", "ends with the process", entries_.size()};
  });
}
