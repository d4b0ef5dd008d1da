#include <Security/FileStore/SecFileVerification.h>

#include <iterator>

#include <Security/FileStore/SecFileEntry.h>
#include <Security/FileStore/SecFileHeader.h>

namespace {

/// One pass over everything that the seal covers.
class Verification {
 public:
  Verification(const SecFileContext& context, const SecFileSeal& seal) : context_(context), seal_(seal) {}

  void run() {
    for (const std::int64_t number : secHeaderNumbers) verifyHeader(number);
    for (std::size_t number = 0; number < secBucketCount; ++number)
      verifyBucket(static_cast<std::uint8_t>(number));
    secRequire(entries_ == seal_.entries && size_ == seal_.size, errSecDecode);
    requireResult("SELECT count(*) FROM record", records_ + 1);  // and the seal
    auto pages = context_.database.use("PRAGMA integrity_check(1)");
    secRequire(pages.step() && pages.text(0) == "ok", errSecDecode);
  }

 private:
  void verifyHeader(std::int64_t number) {
    const SecBytes content = secReadRecord(context_.database, {SecFileRecordKind::header, number});
    secDecodeHeader(content);
    secRequire(secHeaderDigest(content) == seal_.header, errSecDecode);
    ++records_;
  }

  void verifyBucket(std::uint8_t number) {
    const SecFileBucket bucket = secBelieveBucket(context_, seal_, number);
    for (const SecFileLine& line : bucket.lines) {
      secRequire(line.identity.bucket() == number && line.order < seal_.next, errSecDecode);
      verifyEntry(line);
    }
    records_ += !bucket.lines.empty();
  }

  void verifyEntry(const SecFileLine& line) {
    const SecBytes content = secReadEntry(context_, line);
    const SecFileEntryBoxes boxes(content);
    const SecFileEntryPlace place{context_.keys, context_.store, line.number};
    const SecFileEntryHead head = secOpenHead(place, boxes);
    secOpenSecret(place, head, boxes);
    const SecFileIdentity identity = secFileIdentity(context_.keys.index(), head.attributes);
    secRequire(identity == line.identity && head.order == line.order, errSecDecode);
    ++entries_;
    ++records_;
    size_ += secRecordOverhead + content.size();
  }

  void requireResult(const char* sql, std::uint64_t expected) {
    auto row = context_.database.use(sql);
    row.requireRow();
    secRequire(static_cast<std::uint64_t>(row.integer(0)) == expected, errSecDecode);
  }

  const SecFileContext context_;
  const SecFileSeal& seal_;
  std::uint64_t entries_ = 0;
  std::uint64_t size_ = 0;
  std::uint64_t records_ = 0;
};

}  // namespace

void secVerifyStore(const SecFileContext& context, const SecFileSeal& seal) {
  Verification(context, seal).run();
}
