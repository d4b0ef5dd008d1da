#include "Security/SecFileTransaction.h"

#include <algorithm>

#include "Security/SecIdentity.h"

namespace {

bool byIdentity(const SecFileLine& line, const SecFileIdentity& identity) { return line.identity < identity; }
bool byNumber(const SecFileLine& left, const SecFileLine& right) { return left.number < right.number; }

SecFileBucket::iterator placeOf(SecFileBucket& lines, const SecFileIdentity& identity) {
  return std::lower_bound(lines.begin(), lines.end(), identity, byIdentity);
}

bool holds(SecFileBucket& lines, const SecFileIdentity& identity) {
  const auto place = placeOf(lines, identity);
  return place != lines.end() && place->identity == identity;
}

SecFileSeal readSeal(const SecFileContext& context) {
  auto row = context.database.use("SELECT seal FROM store WHERE one=1");
  secRequire(row.step(), errSecDecode);
  return secDecodeSeal(row.blob(0), context.keys.seal(), context.store);
}

}  // namespace

SecFileTransaction::SecFileTransaction(const SecFileContext& context, SecStorage::Access access)
    : context_(context), access_(access), seal_(readSeal(context)) {}

OSStatus SecFileTransaction::find(const SecAttributes& query, const std::function<bool(SecRow)>& visit) {
  return note(secGuarded([&]() -> OSStatus {
    for (const SecFileLine& line : candidates(SecFileQuery(context_.keys.index(), query))) {
      SecRow row{line.number, secReadEntry(context_, line)};
      if (!secMatches(query, row.entry.attributes)) continue;
      known_[line.number] = line.identity;
      if (!visit(std::move(row))) break;
    }
    return errSecSuccess;
  }));
}

OSStatus SecFileTransaction::insert(const SecEntry& entry) {
  return change([&] {
    const SecFileIdentity identity = secFileIdentity(context_.keys.index(), entry.attributes);
    requireFree(identity);
    put(identity, seal_.next++, entry);
  });
}

OSStatus SecFileTransaction::replace(std::int64_t number, const SecEntry& entry) {
  return change([&] {
    const SecFileIdentity before = known(number);
    const SecFileIdentity after = secFileIdentity(context_.keys.index(), entry.attributes);
    if (after != before) requireFree(after);
    drop(before);
    put(after, number, entry);
    known_[number] = after;
  });
}

OSStatus SecFileTransaction::remove(std::int64_t number) {
  return change([&] {
    drop(known(number));
    known_.erase(number);
  });
}

template <class Action>
OSStatus SecFileTransaction::change(Action&& action) {
  return note(secGuarded([&]() -> OSStatus {
    secRequire(access_ == SecStorage::Access::change, errSecReadOnly);
    changed_ = true;
    action();
    return errSecSuccess;
  }));
}

OSStatus SecFileTransaction::note(OSStatus status) {
  if (failure_ == errSecSuccess) failure_ = status;
  return status;
}

void SecFileTransaction::finish() {
  secRequire(failure_ == errSecSuccess, failure_);
  if (!changed_) return;
  const SecBytes seal = secEncodeSeal(seal_, context_.keys.seal(), context_.store);
  context_.database.use("UPDATE store SET seal=? WHERE one=1").bind(seal).run();
}

SecFileBucket& SecFileTransaction::bucket(std::uint8_t number) {
  const auto held = buckets_.find(number);
  if (held != buckets_.end()) return held->second;
  SecFileBucket lines;
  auto rows = context_.database.use(
      "SELECT bucket,identity,number,stamp FROM directory WHERE bucket=? ORDER BY identity");
  rows.bind(std::int64_t{number});
  while (rows.step()) lines.push_back(secLineFrom(rows));
  secRequire(secSame(secBucketSum(context_.keys.seal(), number, lines), seal_.sums[number]), errSecDecode);
  return buckets_[number] = std::move(lines);
}

/// Reads what of the directory was not read yet, in one pass and so without a look-up for each bucket.
void SecFileTransaction::loadAll() {
  std::map<std::uint8_t, SecFileBucket> all;
  auto rows =
      context_.database.use("SELECT bucket,identity,number,stamp FROM directory ORDER BY bucket,identity");
  while (rows.step()) {
    const std::int64_t number = rows.integer(0);
    secRequire(number >= 0 && number < std::int64_t{secBucketCount}, errSecDecode);
    all[static_cast<std::uint8_t>(number)].push_back(secLineFrom(rows));
  }
  for (std::size_t number = 0; number < secBucketCount; ++number) {
    const auto index = static_cast<std::uint8_t>(number);
    if (buckets_.contains(index)) continue;
    secRequire(secSame(secBucketSum(context_.keys.seal(), index, all[index]), seal_.sums[number]),
               errSecDecode);
    buckets_[index] = std::move(all[index]);
  }
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
  secRequire(!holds(bucket(identity.bucket()), identity), errSecDuplicateItem);
}

void SecFileTransaction::put(const SecFileIdentity& identity, std::int64_t number, const SecEntry& entry) {
  const SecFileLine line = secWriteEntry(context_, identity, number, entry);
  const auto identityBytes = secIdentityBytes(identity);
  context_.database.use("INSERT INTO directory VALUES(?,?,?,?)")
      .bind(std::int64_t{identity.bucket()})
      .bind(identityBytes)
      .bind(number)
      .bind(line.stamp)
      .run();
  SecFileBucket& lines = bucket(identity.bucket());
  lines.insert(placeOf(lines, identity), line);
  ++seal_.count;
  sum(identity.bucket());
}

void SecFileTransaction::drop(const SecFileIdentity& identity) {
  SecFileBucket& lines = bucket(identity.bucket());
  const auto line = placeOf(lines, identity);
  const auto identityBytes = secIdentityBytes(identity);
  context_.database.use("DELETE FROM entry WHERE number=?").bind(line->number).run();
  secRequire(context_.database.changes() == 1, errSecDecode);
  context_.database.use("DELETE FROM directory WHERE bucket=? AND identity=?")
      .bind(std::int64_t{identity.bucket()})
      .bind(identityBytes)
      .run();
  secRequire(context_.database.changes() == 1, errSecDecode);
  lines.erase(line);
  --seal_.count;
  sum(identity.bucket());
}

void SecFileTransaction::sum(std::uint8_t number) {
  seal_.sums[number] = secBucketSum(context_.keys.seal(), number, bucket(number));
}

SecFileIdentity SecFileTransaction::known(std::int64_t number) const {
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
  auto rows = context_.database.use("SELECT count(*) FROM entry");
  secRequire(rows.step() && static_cast<std::uint64_t>(rows.integer(0)) == count, errSecDecode);
  secRequire(count == seal_.count, errSecDecode);
  auto pages = context_.database.use("PRAGMA integrity_check(1)");
  secRequire(pages.step() && pages.text(0) == "ok", errSecDecode);
}
