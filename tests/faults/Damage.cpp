// The store file with one bit flipped, or truncated; fuzz/StoreFileFuzz.cpp checks what must hold.
#include "Faults.h"
#include "tests/support/Fuzz.h"

TEST_F(SecFileFaults, Damage) {
  const std::size_t step = inForm(41, 1), size = fuzzedStoreFileSize();
  for (std::size_t at = 0; at < size; at += step) {
    const std::string place = {static_cast<char>(at >> 8), static_cast<char>(at)};
    const char bit = static_cast<char>(1 << (at / step % 8));
    EXPECT_NO_THROW(fuzzWith('\x09' + place + '\1' + bit)) << "flip at " << at;
    EXPECT_NO_THROW(fuzzWith('\x03' + place)) << "cut to " << at;
    count("damaged files", 2);
  }
}
