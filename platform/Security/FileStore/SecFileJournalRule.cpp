#include <Security/FileStore/SecFileJournalRule.h>

#include <algorithm>
#include <bit>

#include <Security/FileStore/SecFileFormat.h>

namespace {

// SQLite's file format: the header of a rollback journal, and the fields of page 1 that are used here.
constexpr unsigned char magic[] = {0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
constexpr std::size_t headerSize = 28;
constexpr std::size_t recordSize = sizeof(std::uint32_t) + secFilePageSize + sizeof(std::uint32_t);
constexpr std::size_t changeField = 24, formatField = 60, applicationField = 68;
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
Header readHeader(const SecFileReader& journal, std::size_t offset) {
  const SecBytes bytes = journal(offset, headerSize);
  const SecView start = std::as_bytes(std::span(magic));
  if (bytes.size() < headerSize || !std::equal(start.begin(), start.end(), bytes.begin())) return {};
  return {field(bytes, 8), field(bytes, 20), field(bytes, 24)};
}

/// Returns the image in the record at `offset` if that is of page 1, otherwise no bytes.
SecBytes readImage(const SecFileReader& journal, std::size_t offset) {
  SecBytes record = journal(offset, sizeof(std::uint32_t) + secFilePageSize);
  if (record.size() != sizeof(std::uint32_t) + secFilePageSize || field(record, 0) != 1) return {};
  record.erase(record.begin(), record.begin() + sizeof(std::uint32_t));
  return record;
}

bool isPlausible(const Header& header) {
  const bool isSector =
      leastSector <= header.sector && header.sector <= mostSector && std::has_single_bit(header.sector);
  return isSector && header.page == secFilePageSize;
}

/// Returns the image of page 1, which has to be the first record in format 2. Format 1 wrote it last, in the
/// last of the journal's parts, each of which has a header at the start of a sector.
SecBytes findImage(const SecFileReader& journal, bool isFormat1) {
  std::size_t offset = 0;
  for (Header header = readHeader(journal, 0); header.records > 0 && isPlausible(header);
       header = readHeader(journal, offset)) {
    offset += header.sector;
    for (std::uint32_t record = 0; record < header.records; ++record, offset += recordSize) {
      SecBytes image = readImage(journal, offset);
      if (!image.empty() || !isFormat1) return image;
      if (journal(offset, 1).empty()) return {};
    }
    offset = (offset + header.sector - 1) / header.sector * header.sector;
  }
  return {};
}

std::string_view fileNumber(SecView page) {
  const std::string_view text(reinterpret_cast<const char*>(page.data()), page.size());
  const std::size_t place = text.find(secFileNumberTable);
  return place == text.npos ? "" : text.substr(place, secFileNumberTable.size() + 2 * sizeof(SecTag));
}

bool belongs(SecView image, SecView firstPage) {
  const std::uint32_t ahead = field(firstPage, changeField) - field(image, changeField);
  if (ahead > 1 || field(image, applicationField) != secFileApplication) return false;
  if (field(image, formatField) == secFileFormat1) return true;
  // A page 1 that was being written when the power failed may lack the number.
  const std::string_view number = fileNumber(firstPage);
  return field(firstPage, formatField) == field(image, formatField) &&
         (number.empty() || number == fileNumber(image));
}

}  // namespace

SecJournalVerdict secJudgeJournal(const SecFileReader& journal, SecView firstPage) {
  if (readHeader(journal, 0).records == 0) return SecJournalVerdict::unsynced;
  const bool isWhole = firstPage.size() == secFilePageSize;
  const SecBytes image = findImage(journal, isWhole && field(firstPage, formatField) == secFileFormat1);
  const bool own = isWhole && !image.empty() && belongs(image, firstPage);
  return own ? SecJournalVerdict::own : SecJournalVerdict::foreign;
}
