#include <Security/FileStore/SecFileJournalRule.h>

#include <algorithm>
#include <bit>

#include <Security/FileStore/SecFileFormat.h>

namespace {

// SQLite's file format: the header of a rollback journal, and the fields of page 1 that are used here.
constexpr unsigned char magic[] = {0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
constexpr std::size_t headerSize = 28;
constexpr std::uint32_t leastSector = 32;
constexpr std::uint32_t mostSector = 65536;

struct Header {
  std::uint32_t records = 0;
  std::uint32_t sector = 0;
  std::uint32_t page = 0;
};

std::uint32_t field(SecView bytes, std::size_t offset) {
  return SecByteReader(bytes.subspan(offset)).number<std::uint32_t>();
}

/// Reads the header; anything else than a header counts no record.
Header readHeader(const SecFileReader& journal) {
  const SecBytes bytes = journal(0, headerSize);
  const SecView start = std::as_bytes(std::span(magic));
  if (bytes.size() < headerSize || !std::equal(start.begin(), start.end(), bytes.begin())) return {};
  return {field(bytes, 8), field(bytes, 20), field(bytes, 24)};
}

/// Returns the image of page 1 if that is the journal's first record, otherwise no bytes.
SecBytes readFirstImage(const SecFileReader& journal, const Header& header) {
  const bool isSector =
      leastSector <= header.sector && header.sector <= mostSector && std::has_single_bit(header.sector);
  if (!isSector || header.page != secFilePageSize) return {};
  SecBytes record = journal(header.sector, sizeof(std::uint32_t) + secFilePageSize);
  if (record.size() != sizeof(std::uint32_t) + secFilePageSize || field(record, 0) != 1) return {};
  record.erase(record.begin(), record.begin() + sizeof(std::uint32_t));
  return record;
}

std::string_view fileNumber(SecView page) {
  const std::string_view text(reinterpret_cast<const char*>(page.data()), page.size());
  const std::size_t place = text.find(secFileNumberTable);
  return place == text.npos ? "" : text.substr(place, secFileNumberTable.size() + 2 * sizeof(SecTag));
}

bool belongs(SecView image, SecView firstPage) {
  constexpr std::size_t change = 24, format = 60, application = 68;
  const std::uint32_t ahead = field(firstPage, change) - field(image, change);
  if (ahead > 1 || field(image, application) != secFileApplication) return false;
  if (field(image, format) == secFileFormat1) return true;
  // A page 1 that was being written when the power failed may lack the number.
  const std::string_view number = fileNumber(firstPage);
  return field(firstPage, format) == field(image, format) && (number.empty() || number == fileNumber(image));
}

}  // namespace

SecJournalVerdict secJudgeJournal(const SecFileReader& journal, SecView firstPage) {
  const Header header = readHeader(journal);
  if (header.records == 0) return SecJournalVerdict::unsynced;
  const SecBytes image = readFirstImage(journal, header);
  const bool own = firstPage.size() == secFilePageSize && !image.empty() && belongs(image, firstPage);
  return own ? SecJournalVerdict::own : SecJournalVerdict::foreign;
}
