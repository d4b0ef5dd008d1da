#include <Security/FileStore/SecFileRekey.h>

#include <algorithm>

#include <Security/FileStore/SecFileEntry.h>

namespace {

using Buckets = std::array<SecFileBucket, secBucketCount>;

Buckets readBuckets(const SecFileContext& context, const SecFileSeal& seal) {
  Buckets buckets;
  for (std::size_t number = 0; number < buckets.size(); ++number)
    buckets[number] = secBelieveBucket(context, seal, static_cast<std::uint8_t>(number));
  return buckets;
}

/// Moves all lines out, in the order of the records in the file.
std::vector<SecFileLine> takeLines(Buckets& buckets) {
  std::vector<SecFileLine> all;
  for (SecFileBucket& bucket : buckets) {
    all.insert(all.end(), bucket.lines.begin(), bucket.lines.end());
    bucket.lines.clear();
  }
  std::sort(all.begin(), all.end(),
            [](const SecFileLine& left, const SecFileLine& right) { return left.number < right.number; });
  return all;
}

SecFileLine rekeyEntry(const SecFileContext& from, const SecFileLine& line, const SecFileContext& to) {
  const SecBytes content = secReadEntry(from, line);
  const SecFileEntryBoxes boxes(content);
  const SecFileEntryPlace before{from.keys, from.store, line.number};
  SecFileEntryHead head = secOpenHead(before, boxes);
  const SecSecret secret = secOpenSecret(before, head, boxes);
  const SecBytes again = secSealEntry({to.keys, to.store, line.number}, head, secret.bytes());
  const SecFileLine after = secWriteEntry(to, line.number, head, again);
  secReadEntry(to, after);
  return after;
}

}  // namespace

void secRekey(const SecFileContext& from, SecFileSeal& seal, const SecFileContext& to) {
  Buckets buckets = readBuckets(from, seal);
  const std::vector<SecFileLine> lines = takeLines(buckets);
  secRequire(lines.size() == seal.entries, errSecDecode);
  for (const SecFileLine& line : lines) {
    const SecFileLine after = rekeyEntry(from, line, to);
    buckets[after.identity.bucket()].lines.push_back(after);
  }
  for (std::size_t number = 0; number < buckets.size(); ++number) {
    secWriteBucket(to, static_cast<std::uint8_t>(number), buckets[number]);
    seal.buckets[number] = buckets[number].tag;
    secBelieveBucket(to, seal, static_cast<std::uint8_t>(number));
  }
}
