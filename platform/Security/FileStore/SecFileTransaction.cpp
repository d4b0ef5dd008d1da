#include <Security/FileStore/SecFileTransaction.h>

#include <algorithm>

#include <Security/SecIdentity.h>

namespace {

bool byNumber(const SecFileLine& left, const SecFileLine& right) { return left.number < right.number; }

SecFileBucket::iterator lineOf(SecFileBucket& lines, const SecFileIdentity& identity) {
  return std::find_if(lines.begin(), lines.end(),
                      [&](const SecFileLine& line) { return line.identity == identity; });
}

SecFileSeal readSeal(const SecFileContext& context) {
  auto row = context.database.storeRow();
  row.requireRow();
  return secDecodeSeal(row.blob(2), context.keys.seal(), context.store);
}

}  // namespace

SecFileTransaction::SecFileTransaction(const SecFileContext& context, SecStorage::Access access)
    : context_(context), access_(access), seal_(readSeal(context)) {}

void SecFileTransaction::find(const SecQuery& query, SecSecrets secrets,
                              const std::function<bool(SecRow)>& visit) {
  for (const SecFileLine& line : candidates(SecFileQuery(context_.keys.index(), query))) {
    SecRow row{line.number, secReadEntry(context_, line)};
    if (!secMatches(query, row.entry.attributes)) continue;
    if (secrets == SecSecrets::skip) row.entry.secret = SecSecret();
    known_[line.number] = line;
    if (!visit(std::move(row))) break;
  }
}

void SecFileTransaction::insert(const SecEntry& entry) {
  change([&] {
    const SecFileIdentity identity = secFileIdentity(context_.keys.index(), entry.attributes);
    requireFree(identity);
    put(identity, seal_.next++, entry);
  });
}

void SecFileTransaction::replace(std::int64_t number, const SecAttributes& attributes,
                                 const std::optional<SecSecret>& secret) {
  change([&] {
    const SecFileLine before = known(number);
    const SecFileIdentity after = secFileIdentity(context_.keys.index(), attributes);
    if (after != before.identity) requireFree(after);
    const SecEntry entry{attributes, secret ? secret->clone() : secReadEntry(context_, before).secret};
    drop(before.identity);
    put(after, number, entry);
    known_[number] = put_[number];
  });
}

void SecFileTransaction::remove(std::int64_t number) {
  change([&] {
    drop(known(number).identity);
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

void SecFileTransaction::finish() {
  // Work that went on after a failure would keep half of a change.
  secRequire(begun_ == done_, errSecParam);
  if (begun_ == 0) return;
  const SecBytes seal = secEncodeSeal(seal_, context_.keys.seal(), context_.store);
  context_.database.use("UPDATE store SET seal=?").bind(seal).run();
  readBack();
}

/// A damaged page can swallow what is written to it; then the change is not kept.
void SecFileTransaction::readBack() {
  seal_ = readSeal(context_);
  for (const std::uint8_t number : written_) believe(number, secReadBucket(context_, number));
  for (const auto& [number, line] : put_) secReadEntry(context_, line);
}

SecFileBucket SecFileTransaction::believe(std::uint8_t number, SecView bytes) const {
  secRequire(secSame(secBucketSum(context_.keys.seal(), number, bytes), seal_.sums[number]), errSecDecode);
  return secDecodeBucket(bytes);
}

SecFileBucket& SecFileTransaction::bucket(std::uint8_t number) {
  const auto held = buckets_.find(number);
  if (held != buckets_.end()) return held->second;
  return buckets_[number] = believe(number, secReadBucket(context_, number));
}

/// Only now is every bucket read, the absent ones too: one that was taken away would not be missed else.
void SecFileTransaction::loadAll() {
  for (std::size_t number = 0; number < secBucketCount; ++number) bucket(static_cast<std::uint8_t>(number));
}

SecFileBucket SecFileTransaction::candidates(const SecFileQuery& query) {
  SecFileBucket found;
  const auto take = [&](const SecFileBucket& lines) {
    for (const SecFileLine& line : lines)
      if (query.mayMatch(line.identity)) found.push_back(line);
  };
  if (const auto only = query.bucket()) {
    take(bucket(*only));
  } else {
    loadAll();
    for (const auto& [number, lines] : buckets_) take(lines);
  }
  std::sort(found.begin(), found.end(), byNumber);
  return found;
}

void SecFileTransaction::requireFree(const SecFileIdentity& identity) {
  SecFileBucket& lines = bucket(identity.bucket());
  secRequire(lineOf(lines, identity) == lines.end(), errSecDuplicateItem);
}

void SecFileTransaction::put(const SecFileIdentity& identity, std::int64_t number, const SecEntry& entry) {
  const SecFileLine line = secWriteEntry(context_, identity, number, entry);
  bucket(identity.bucket()).push_back(line);
  put_[number] = line;
  ++seal_.count;
  write(identity.bucket());
}

void SecFileTransaction::drop(const SecFileIdentity& identity) {
  SecFileBucket& lines = bucket(identity.bucket());
  const auto line = lineOf(lines, identity);
  secRemoveEntry(context_, line->number);
  put_.erase(line->number);
  lines.erase(line);
  --seal_.count;
  write(identity.bucket());
}

void SecFileTransaction::write(std::uint8_t number) {
  const SecBytes bytes = secEncodeBucket(bucket(number));
  secWriteBucket(context_, number, bytes);
  written_.insert(number);
  seal_.sums[number] = secBucketSum(context_.keys.seal(), number, bytes);
}

SecFileLine SecFileTransaction::known(std::int64_t number) const {
  const auto row = known_.find(number);
  secRequire(row != known_.end(), errSecParam);
  return row->second;
}

void SecFileTransaction::verify() {
  loadAll();
  std::uint64_t count = 0;
  for (const auto& [number, lines] : buckets_) {
    for (const SecFileLine& line : lines) {
      secRequire(
          secFileIdentity(context_.keys.index(), secReadEntry(context_, line).attributes) == line.identity,
          errSecDecode);
      secRequire(line.number < seal_.next && line.identity.bucket() == number, errSecDecode);
      ++count;
    }
  }
  secRequire(count == seal_.count && count == secCountEntries(context_.database), errSecDecode);
  auto pages = context_.database.use("PRAGMA integrity_check(1)");
  secRequire(pages.step() && pages.text(0) == "ok", errSecDecode);
}
