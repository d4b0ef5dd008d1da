#include <Security/FileStore/SecFileScan.h>

#include <algorithm>

#include <Security/FileStore/SecFileFormat.h>

namespace {

constexpr std::size_t pageNumberSize = 4;
constexpr std::size_t largestRecord = std::size_t{64} << 20;
// SQLite's file format: how much of a row stays on the page of its table, for pages without reserved bytes.
constexpr std::size_t mostLocal = secFilePageSize - 35;
constexpr std::size_t leastLocal = (secFilePageSize - 12) * 32 / 255 - 23;

/// The size of SQLite's own header of the row: its length, the number as the row's key, the size of the blob.
std::size_t rowHeaderSize(std::size_t length) {
  std::size_t size = 3;
  for (std::size_t type = 12 + 2 * length; type > 127; type >>= 7) ++size;
  return size;
}

/// How many bytes of a record are on the page where it begins.
std::size_t localSize(std::size_t length) {
  const std::size_t header = rowHeaderSize(length);
  const std::size_t row = header + length;
  if (row <= mostLocal) return length;
  const std::size_t local = leastLocal + (row - leastLocal) % (secFilePageSize - pageNumberSize);
  return (local <= mostLocal ? local : leastLocal) - header;
}

std::uint32_t pageNumberAt(SecView pages, std::size_t at) {
  return SecByteReader(pages.subspan(at)).number<std::uint32_t>();
}

/// Collects a record that begins at `at`, over the pages that it continues on; fails with errSecDecode if the
/// pages cannot hold it.
SecBytes collect(SecView pages, std::size_t at, std::size_t length) {
  const std::size_t local = localSize(length);
  const std::size_t pageEnd = std::min(pages.size(), (at / secFilePageSize + 1) * secFilePageSize);
  secRequire(at + local + (local < length ? pageNumberSize : 0) <= pageEnd, errSecDecode);
  SecBytes bytes(pages.begin() + static_cast<std::ptrdiff_t>(at),
                 pages.begin() + static_cast<std::ptrdiff_t>(at + local));
  std::size_t next = at + local;
  while (bytes.size() < length) {
    const std::size_t number = pageNumberAt(pages, next);
    secRequire(number > 0 && number <= pages.size() / secFilePageSize, errSecDecode);
    next = (number - 1) * secFilePageSize;
    const std::size_t count = std::min(length - bytes.size(), secFilePageSize - pageNumberSize);
    const SecView part = pages.subspan(next + pageNumberSize, count);
    bytes.insert(bytes.end(), part.begin(), part.end());
  }
  return bytes;
}

bool isKind(std::uint64_t mark) {
  using enum SecFileRecordKind;
  for (const SecFileRecordKind kind : {header, seal, bucket, entry})
    if (static_cast<std::uint64_t>(kind) == mark) return true;
  return false;
}

/// Fails with errSecDecode if no record begins there.
SecFileFound readAt(SecView pages, std::size_t at) {
  SecByteReader reader(pages.subspan(at));
  const auto mark = reader.number<std::uint64_t>();
  secRequire(isKind(mark), errSecDecode);
  const auto length = reader.number<std::uint32_t>();
  secRequire(secRecordOverhead <= length && length <= largestRecord, errSecDecode);
  const SecFileRecord record{static_cast<SecFileRecordKind>(mark), reader.number<std::int64_t>()};
  const SecBytes bytes = collect(pages, at, length);
  const SecView content = secUnframe(record, bytes);
  return {record, {content.begin(), content.end()}};
}

}  // namespace

void secScan(SecView pages, const std::function<void(SecFileFound)>& visit) {
  SecByteWriter marks;  // all kinds begin with the same half
  marks.number(static_cast<std::uint32_t>(static_cast<std::uint64_t>(SecFileRecordKind::header) >> 32));
  const SecView half = marks.bytes();
  for (auto at = pages.begin();; ++at) {
    at = std::search(at, pages.end(), half.begin(), half.end());
    if (at == pages.end()) return;
    std::optional<SecFileFound> found;
    const OSStatus status =
        secStatusOf([&] { found = readAt(pages, static_cast<std::size_t>(at - pages.begin())); });
    secRequire(status == errSecSuccess || status == errSecDecode, status);
    if (found) visit(std::move(*found));
  }
}

std::vector<SecFileHeader> secScanHeaders(SecView pages) {
  std::vector<SecFileHeader> headers;
  std::vector<SecDigest> known;
  secScan(pages, [&](const SecFileFound& found) {
    if (found.record.kind != SecFileRecordKind::header) return;
    const SecDigest digest = secHash(found.content);
    if (std::find(known.begin(), known.end(), digest) != known.end()) return;
    known.push_back(digest);
    static_cast<void>(secStatusOf([&] { headers.push_back(secDecodeHeader(found.content)); }));
  });
  return headers;
}
