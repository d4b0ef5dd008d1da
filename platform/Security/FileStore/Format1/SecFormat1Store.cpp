#include <Security/FileStore/Format1/SecFormat1Store.h>

#include <algorithm>

#include <Security/FileStore/SecFileEntryCoding.h>
#include <Security/FileStore/SecFileFormat.h>
#include <Security/SecIdentity.h>

namespace {

constexpr const char* tables[] = {
    "CREATE TABLE directory(bucket INTEGER PRIMARY KEY,lines BLOB NOT NULL)",
    "CREATE TABLE entry(number INTEGER PRIMARY KEY,body BLOB NOT NULL)",
    "CREATE TABLE store(one INTEGER PRIMARY KEY,id BLOB NOT NULL,slot BLOB NOT NULL,seal BLOB NOT NULL)",
};

void checkTables(SecFileDatabase& database) {
  SecFileStatement rows = database.use("SELECT sql FROM sqlite_schema");
  for (const char* expected : tables) secRequire(rows.step() && rows.text(0) == expected, errSecDecode);
  secRequire(!rows.step(), errSecDecode);
}

/// Runs `action` on a part of a damaged store and returns whether that part is intact.
template <class Action>
bool isIntact(Action&& action) {
  const OSStatus status = secStatusOf(action);
  secRequire(status == errSecSuccess || status == errSecDecode, status);
  return status == errSecSuccess;
}

}  // namespace

/// Where an entry is: the keyed tags of its identity, its row, and how that row ends.
struct SecFormat1Store::Line {
  static constexpr std::size_t size = 48 + 8 + 16;
  std::array<std::byte, 48> identity{};
  std::int64_t number = 0;
  SecTag stamp{};
};

struct SecFormat1Store::Seal {
  std::uint64_t count = 0;
  std::array<SecTag, secBucketCount> sums{};
};

SecFormat1Store::SecFormat1Store(SecFileDatabase& database) : database_(database) {
  checkTables(database);
  auto row = database.use("SELECT id,slot FROM store");
  row.requireRow();
  secRequire(row.blob(0).size() == sizeof(SecStoreID), errSecDecode);
  id_ = SecByteReader(row.blob(0)).array<sizeof(SecStoreID)>();
  slot_ = secDecodeFormat1Slot(row.blob(1), id_);
  secRequire(!row.step(), errSecDecode);
}

void SecFormat1Store::unlock(SecSecret secret) {
  keys_ = secOpenFormat1Slot(slot_, secret.bytes(), id_);
  secret_ = std::move(secret);
}

void SecFormat1Store::unlockLike(SecFormat1Store& other) {
  if (id_ != other.id_ || other.isLocked()) return;
  keys_ = std::move(other.keys_);
  secret_ = std::move(other.secret_);
}

SecFormat1Store::Seal SecFormat1Store::readSeal() {
  secRequire(!isLocked(), errSecInteractionNotAllowed);
  auto row = database_.use("SELECT seal FROM store");
  row.requireRow();
  const SecView bytes = row.blob(0);
  secRequire(bytes.size() > sizeof(SecDigest), errSecDecode);
  const SecView body = bytes.first(bytes.size() - sizeof(SecDigest));
  SecByteWriter message;
  message.raw("VXFoundation seal").number(secFileFormat1).raw(id_).raw(body);
  secRequire(secSame(bytes.last(sizeof(SecDigest)), secAuthenticate(keys_->seal.bytes(), message.bytes())),
             errSecDecode);
  SecByteReader reader(body);
  reader.number<std::int64_t>();  // of the next entry
  Seal seal;
  seal.count = reader.number<std::uint64_t>();
  for (SecTag& sum : seal.sums) sum = reader.array<sizeof(SecTag)>();
  return seal;
}

std::vector<SecFormat1Store::Line> SecFormat1Store::decodeLines(SecView bytes) {
  SecByteReader reader(bytes);
  std::vector<Line> lines(bytes.size() / Line::size);
  for (Line& line : lines) {
    line.identity = reader.array<sizeof(line.identity)>();
    line.number = reader.number<std::int64_t>();
    line.stamp = reader.array<sizeof(SecTag)>();
  }
  secRequire(reader.rest().empty(), errSecDecode);
  return lines;
}

std::vector<SecFormat1Store::Line> SecFormat1Store::readLines(const Seal& seal) {
  std::vector<Line> all;
  for (std::size_t bucket = 0; bucket < secBucketCount; ++bucket) {
    auto row = database_.use("SELECT lines FROM directory WHERE bucket=?");
    row.bind(static_cast<std::int64_t>(bucket));
    const SecView bytes = row.step() ? row.blob(0) : SecView();
    SecByteWriter message;
    message.raw("VXFoundation bucket").number(static_cast<std::uint8_t>(bucket)).raw(bytes);
    const SecTag sum = secAuthenticateShort(keys_->seal.bytes(), message.bytes());
    secRequire(secSame(bytes.empty() ? SecTag() : sum, seal.sums[bucket]), errSecDecode);
    const std::vector<Line> lines = decodeLines(bytes);
    all.insert(all.end(), lines.begin(), lines.end());
  }
  std::sort(all.begin(), all.end(),
            [](const Line& left, const Line& right) { return left.number < right.number; });
  return all;
}

SecEntry SecFormat1Store::readEntry(const Line& line) {
  auto row = database_.use("SELECT body FROM entry WHERE number=?");
  row.bind(line.number);
  row.requireRow();
  const SecView body = row.blob(0);
  secRequire(secSame(secBoxTag(body), line.stamp), errSecDecode);
  SecByteWriter binding;
  binding.raw("VXFoundation entry").number(secFileFormat1).raw(id_).number(line.number).raw(line.identity);
  const SecSecret plaintext = secOpen(keys_->item.bytes(), binding.bytes(), body);
  SecByteReader reader(plaintext.bytes());
  SecEntry entry;
  entry.attributes = secTakeAttributes(reader);
  entry.secret = secTakeSecret(reader);
  secRequirePadding(reader);
  return entry;
}

void SecFormat1Store::read(const std::function<bool(SecRow)>& visit) {
  for (const Line& line : readLines(readSeal()))
    if (!visit({line.number, readEntry(line)})) break;
}

void SecFormat1Store::salvage(const std::function<void(SecEntry)>& visit) {
  secRequire(!isLocked(), errSecInteractionNotAllowed);
  auto rows = database_.use("SELECT lines FROM directory");
  bool more = true;
  while (isIntact([&] { more = rows.step(); }) && more) {
    std::vector<Line> lines;
    static_cast<void>(isIntact([&] { lines = decodeLines(rows.blob(0)); }));
    for (const Line& line : lines) {
      SecEntry entry;
      if (isIntact([&] { entry = readEntry(line); })) visit(std::move(entry));
    }
  }
}

void SecFormat1Store::verify() {
  const Seal seal = readSeal();
  std::uint64_t entries = 0;
  for (const Line& line : readLines(seal)) {
    readEntry(line);
    ++entries;
  }
  secRequire(entries == seal.count && entries == count(), errSecDecode);
  auto pages = database_.use("PRAGMA integrity_check(1)");
  secRequire(pages.step() && pages.text(0) == "ok", errSecDecode);
}

std::uint64_t SecFormat1Store::count() {
  auto row = database_.use("SELECT count(*) FROM entry");
  row.requireRow();
  return static_cast<std::uint64_t>(row.integer(0));
}

void SecFormat1Transaction::find(const SecQuery& query, SecSecrets secrets,
                                 const std::function<bool(SecRow)>& visit) {
  store_.read([&](SecRow row) {
    if (!secMatches(query, row.entry.attributes)) return true;
    if (secrets == SecSecrets::skip) row.entry.secret = SecSecret();
    return visit(std::move(row));
  });
}
