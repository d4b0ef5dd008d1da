#include <Security/FileStore/SecFileSalvage.h>

#include <algorithm>
#include <map>
#include <utility>

#include <Security/FileStore/Format1/SecFormat1Store.h>
#include <Security/FileStore/SecFileEntry.h>
#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileKeyring.h>
#include <Security/FileStore/SecFileRaw.h>
#include <Security/FileStore/SecFileScan.h>
#include <Security/FileStore/SecFileSeal.h>

namespace {

/// Runs `action` and returns whether it succeeded; only damage may keep it from that.
template <class Action>
bool isIntact(Action&& action) {
  const OSStatus status = secStatusOf(action);
  secRequire(status == errSecSuccess || status == errSecDecode, status);
  return status == errSecSuccess;
}

/// The records of one state of a store.
class Salvage {
 public:
  Salvage(const SecFileHeader& header, const SecFileKeys& keys, SecView pages)
      : header_(header), keys_(keys), pages_(pages) {
    scan(SecFileRecordKind::seal, [&](const SecFileFound& found) { takeSeal(found); });
  }

  /// How late this state is among those of which something is left.
  std::uint64_t changes() const { return seal_ ? seal_->changes : 0; }

  void run(const std::function<void(SecEntry)>& visit) {
    if (seal_) scan(SecFileRecordKind::bucket, [&](const SecFileFound& found) { takeBucket(found); });
    scan(SecFileRecordKind::entry, [&](const SecFileFound& found) { takeEntry(found); });
    std::vector<Entry*> inOrder;
    for (auto& [identity, entry] : entries_) inOrder.push_back(&entry);
    std::sort(inOrder.begin(), inOrder.end(),
              [](const Entry* left, const Entry* right) { return left->head.order < right->head.order; });
    for (Entry* entry : inOrder) visit({std::move(entry->head.attributes), std::move(entry->secret)});
  }

 private:
  struct Entry {
    SecFileEntryHead head;
    SecSecret secret;
  };
  using Identity = std::array<SecFileIdentity::Tag, 3>;

  template <class Visit>
  void scan(SecFileRecordKind kind, Visit visit) {
    secScan(pages_, [&](const SecFileFound& found) {
      if (found.record.kind == kind) static_cast<void>(isIntact([&] { visit(found); }));
    });
  }

  void takeSeal(const SecFileFound& found) {
    SecFileSeal seal = secDecodeSeal(found.content, keys_, header_.store);
    if (!seal_ || seal_->changes < seal.changes) seal_ = std::move(seal);
  }

  void takeBucket(const SecFileFound& found) {
    const std::int64_t number = found.record.number - secFirstBucketNumber;
    secRequire(0 <= number && number < std::ssize(seal_->buckets), errSecDecode);
    const auto place = static_cast<std::uint8_t>(number);
    SecFileBucket bucket = secOpenBucket(keys_, header_.store, place, found.content);
    if (bucket.tag == seal_->buckets[place]) buckets_[place] = std::move(bucket);
  }

  /// Of several states of an entry, the one that counts is the one that its bucket lists. If the bucket is
  /// damaged, it is the newest.
  void takeEntry(const SecFileFound& found) {
    const SecFileEntryBoxes boxes(found.content);
    const SecFileEntryPlace place{keys_, header_.store, found.record.number};
    Entry entry{secOpenHead(place, boxes), {}};
    entry.secret = secOpenSecret(place, entry.head, boxes);
    const SecFileIdentity identity = secFileIdentity(keys_.index(), entry.head.attributes);
    if (!mayBeCurrent(identity, found.record.number, secBoxTag(boxes.head))) return;
    const Identity key{identity.account, identity.site, identity.rest};
    const auto held = entries_.find(key);
    if (held == entries_.end() || held->second.head.change <= entry.head.change)
      entries_.insert_or_assign(key, std::move(entry));
  }

  bool mayBeCurrent(const SecFileIdentity& identity, std::int64_t number, const SecTag& tag) const {
    constexpr SecTag none{};
    if (seal_ && seal_->buckets[identity.bucket()] == none) return false;
    const auto bucket = buckets_.find(identity.bucket());
    if (bucket == buckets_.end()) return true;
    const auto& lines = bucket->second.lines;
    return std::any_of(lines.begin(), lines.end(),
                       [&](const SecFileLine& line) { return line.number == number && line.tag == tag; });
  }

  const SecFileHeader& header_;
  const SecFileKeys& keys_;
  SecView pages_;
  std::optional<SecFileSeal> seal_;
  std::map<std::uint8_t, SecFileBucket> buckets_;  // those that are intact
  std::map<Identity, Entry> entries_;
};

void open(SecFileKeyring& keyring, const SecFileHeader& header, const SecFileFolder* keyFolder,
          SecView passphrase) {
  const OSStatus status = secStatusOf([&] { keyring.openByKeyFile(header, keyFolder); });
  if (status == errSecSuccess) return;
  secRequire(!passphrase.empty(), status);
  keyring.openByPassphrase(header, passphrase);
}

/// Salvages the latest state that can be opened.
void salvage(const std::vector<SecFileHeader>& headers, const SecFileFolder* keyFolder, SecView passphrase,
             SecView pages, const std::function<void(SecEntry)>& visit) {
  std::vector<SecFileKeyring> keyrings(headers.size());
  std::optional<Salvage> latest;
  OSStatus failure = errSecDecode;
  for (std::size_t number = 0; number < headers.size(); ++number) {
    failure = secStatusOf([&] { open(keyrings[number], headers[number], keyFolder, passphrase); });
    if (failure != errSecSuccess) continue;
    Salvage found(headers[number], keyrings[number].keys(), pages);
    if (!latest || latest->changes() < found.changes()) latest.emplace(std::move(found));
  }
  secRequire(latest.has_value(), failure);
  latest->run(visit);
}

void salvageFormat1(const SecFileFolder& folder, const std::string& name, const SecFileFolder* keyFolder,
                    SecView passphrase, const std::function<void(SecEntry)>& visit) {
  SecFileDatabase database(folder, name, std::chrono::seconds(5));
  const SecFileUnitOfWork reading(database, false);
  secRequire(database.format() == secFileFormat1, errSecDecode);
  SecFormat1Store store(database);
  auto key = keyFolder ? keyFolder->read(store.keyFileName(), secKeySize + 1) : std::nullopt;
  secRequire(key || !passphrase.empty(), store.protection() == SecFileProtection::keyFile
                                             ? errSecDataNotAvailable
                                             : errSecInteractionNotAllowed);
  store.unlock(key ? std::move(*key) : SecSecret(passphrase));
  store.salvage(visit);
}

}  // namespace

void secSalvage(const SecFileOpenSite& open, SecView passphrase, const std::function<void(SecEntry)>& visit) {
  const auto& [site, folder] = open;
  const auto opened = site.openKeyFolder();
  const SecFileFolder* const keyFolder = opened ? &*opened : nullptr;
  const SecBytes pages = secReadRaw(folder, site.name);
  const std::vector<SecFileHeader> headers = secScanHeaders(pages);
  if (headers.empty()) return salvageFormat1(folder, site.name, keyFolder, passphrase, visit);
  salvage(headers, keyFolder, passphrase, pages, visit);
}
