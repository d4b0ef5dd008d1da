#include <Security/FileStore/SecFileTransaction.h>

#include <algorithm>

#include <Security/FileStore/SecFileRecord.h>
#include <Security/SecIdentity.h>

namespace {

using Lines = std::vector<SecFileLine>;

bool byOrder(const SecFileLine& left, const SecFileLine& right) { return left.order < right.order; }

Lines::iterator lineOf(SecFileBucket& bucket, const SecFileIdentity& identity) {
  return std::find_if(bucket.lines.begin(), bucket.lines.end(),
                      [&](const SecFileLine& line) { return line.identity == identity; });
}

}  // namespace

SecFileTransaction::SecFileTransaction(const SecFileContext& context, SecFileSeal& seal,
                                       SecStorage::Access access)
    : context_(context), seal_(seal), access_(access) {}

void SecFileTransaction::find(const SecQuery& query, SecSecrets secrets,
                              const std::function<bool(SecRow)>& visit) {
  for (const SecFileLine& line : candidates(SecFileQuery(context_.keys.index(), query))) {
    const SecBytes content = secReadEntry(context_, line);
    const SecFileEntryBoxes boxes(content);
    SecFileEntryHead head = secOpenHead(placeOf(line.number), boxes);
    if (!secMatches(query, head.attributes)) continue;
    SecRow row{line.number, {}};
    if (secrets == SecSecrets::read) row.entry.secret = secOpenSecret(placeOf(line.number), head, boxes);
    row.entry.attributes = std::move(head.attributes);
    known_[line.number] = line;
    if (!visit(std::move(row))) break;
  }
}

void SecFileTransaction::insert(const SecEntry& entry) {
  change([&] {
    requireFree(secFileIdentity(context_.keys.index(), entry.attributes));
    const std::int64_t number = secNewEntryNumber();
    SecFileEntryHead head{seal_.next++, seal_.changes + 1, {}, entry.attributes};
    put(number, head, secSealEntry(placeOf(number), head, entry.secret.bytes()));
  });
}

void SecFileTransaction::replace(std::int64_t number, const SecAttributes& attributes,
                                 const std::optional<SecSecret>& secret) {
  change([&] {
    const SecFileLine before = known(number);
    if (secFileIdentity(context_.keys.index(), attributes) != before.identity)
      requireFree(secFileIdentity(context_.keys.index(), attributes));
    const SecBytes content = secReadEntry(context_, before);
    const SecFileEntryBoxes boxes(content);
    SecFileEntryHead head{before.order, seal_.changes + 1, secBoxTag(boxes.secret), attributes};
    unlist(before);
    seal_.size -= secRecordOverhead + content.size();
    put(number, head,
        secret ? secSealEntry(placeOf(number), head, secret->bytes())
               : secSealHead(placeOf(number), head, boxes.secret));
    known_[number] = put_[number];
  });
}

void SecFileTransaction::remove(std::int64_t number) {
  change([&] {
    unlist(known(number));
    seal_.size -= secRemoveEntry(context_, number);
    known_.erase(number);
  });
}

template <class Action>
void SecFileTransaction::change(Action&& action) {
  secRequire(access_ == SecStorage::Access::change, errSecReadOnly);
  ++begun_;
  action();
  ++done_;
}

bool SecFileTransaction::hasChanged() const {
  // Work that went on after a failure would keep half of a change.
  secRequire(begun_ == done_, errSecParam);
  return begun_ > 0;
}

void SecFileTransaction::finish() {
  for (const std::uint8_t number : touched_) {
    secWriteBucket(context_, number, buckets_[number]);
    seal_.buckets[number] = buckets_[number].tag;
  }
  ++seal_.changes;
  secWriteSeal(context_, seal_);
  readBack();
}

/// A damaged page can swallow what is written to it; then the change is not kept.
void SecFileTransaction::readBack() {
  seal_ = secReadSeal(context_);
  for (const std::uint8_t number : touched_) secBelieveBucket(context_, seal_, number);
  for (const auto& [number, line] : put_) secReadEntry(context_, line);
}

SecFileEntryPlace SecFileTransaction::placeOf(std::int64_t number) const {
  return {context_.keys, context_.store, number};
}

SecFileBucket& SecFileTransaction::bucket(std::uint8_t number) {
  const auto held = buckets_.find(number);
  if (held != buckets_.end()) return held->second;
  return buckets_[number] = secBelieveBucket(context_, seal_, number);
}

/// Reads the missing buckets too: one that was removed would not be noticed otherwise.
Lines SecFileTransaction::lines() {
  Lines all;
  for (std::size_t number = 0; number < secBucketCount; ++number) {
    const Lines& listed = bucket(static_cast<std::uint8_t>(number)).lines;
    all.insert(all.end(), listed.begin(), listed.end());
  }
  return all;
}

Lines SecFileTransaction::candidates(const SecFileQuery& query) {
  const auto only = query.bucket();
  Lines found = only ? bucket(*only).lines : lines();
  std::erase_if(found, [&](const SecFileLine& line) { return !query.mayMatch(line.identity); });
  std::sort(found.begin(), found.end(), byOrder);
  return found;
}

void SecFileTransaction::requireFree(const SecFileIdentity& identity) {
  SecFileBucket& listing = bucket(identity.bucket());
  secRequire(lineOf(listing, identity) == listing.lines.end(), errSecDuplicateItem);
}

void SecFileTransaction::put(std::int64_t number, const SecFileEntryHead& head, SecView content) {
  const SecFileLine line = secWriteEntry(context_, number, head, content);
  bucket(line.identity.bucket()).lines.push_back(line);
  touched_.insert(line.identity.bucket());
  put_[number] = line;
  ++seal_.entries;
  seal_.size += secRecordOverhead + content.size();
}

void SecFileTransaction::unlist(const SecFileLine& line) {
  SecFileBucket& listing = bucket(line.identity.bucket());
  listing.lines.erase(lineOf(listing, line.identity));
  touched_.insert(line.identity.bucket());
  put_.erase(line.number);
  --seal_.entries;
}

SecFileLine SecFileTransaction::known(std::int64_t number) const {
  const auto row = known_.find(number);
  secRequire(row != known_.end(), errSecParam);
  return row->second;
}
