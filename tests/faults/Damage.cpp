// The store file with one bit flipped, or truncated; fuzz/StoreFileFuzz.cpp checks what must hold. What is
// salvaged from one with one or two bits flipped.
#include <algorithm>
#include <random>
#include <set>

#include "Faults.h"
#include "tests/support/Fuzz.h"

namespace {

constexpr std::size_t pageSize = 4096;

/// A closed store of 40 entries, three of which continue on pages of their own, and what can be salvaged from
/// it.
class Salvaged {
 public:
  Salvaged() {
    Passwords passwords;
    EXPECT_EQ(passwords.open(temporary_.place), errSecSuccess);
    for (std::size_t number = 0; number < 42; ++number) {
      const std::string name = "account " + std::to_string(number);
      held_[name] = std::string(number % 13 == 5 ? 9000 : 10 * number, 'x') + std::to_string(number);
      EXPECT_EQ(passwords.add(name, "first"), errSecSuccess);
      EXPECT_EQ(passwords.update(name, held_[name]), errSecSuccess);
    }
    for (const char* name : {"account 7", "account 30"}) EXPECT_EQ(passwords.remove(name), errSecSuccess);
    held_.erase("account 7");
    held_.erase("account 30");
    passwords.storage.reset();
    content_ = readFile(temporary_.place.store);
    for (std::size_t at = 0; at < content_.size(); at += pageSize) loseNoMoreThanThePageAt(at);
  }

  std::size_t size() const { return content_.size(); }
  /// Flips bits at these places, and expects all entries but those on the same pages.
  void expectWith(std::initializer_list<std::size_t> places, unsigned bit) const {
    std::string damaged = content_;
    for (const std::size_t place : places) damaged[place] = static_cast<char>(damaged[place] ^ 1 << bit);
    for (const std::string& name : lostFrom(damaged))
      EXPECT_TRUE(std::any_of(places.begin(), places.end(),
                              [&](std::size_t place) { return on_[place / pageSize].contains(name); }))
          << name << " is lost by a flip at " << *places.begin();
    count("salvaged files");
  }

 private:
  /// Learns what is on a page: an entry for each mark of one, or else the rest of a long one.
  void loseNoMoreThanThePageAt(std::size_t at) {
    const std::string page = content_.substr(at, pageSize);
    std::size_t marks = 0;
    for (std::size_t mark = 0; (mark = page.find("\xE1VKSENTR", mark)) != page.npos; ++mark) ++marks;
    on_.push_back(lostFrom(std::string(content_).replace(at, pageSize, pageSize, '\0')));
    EXPECT_LE(on_.back().size(), std::max<std::size_t>(marks, 1)) << "lost with the page at " << at;
  }

  std::set<std::string> lostFrom(const std::string& content) const {
    writeFile(temporary_.place.store, content);
    Held left = held_;
    const OSStatus status = SecFileStorage::salvage(temporary_.place, {}, [&](const SecEntry& entry) {
      const SecText& account = *entry.attributes.account;
      const auto kept = left.extract({account.begin(), account.end()});
      EXPECT_TRUE(kept && kept.mapped() == textFrom(entry.secret)) << "what was salvaged was not kept";
    });
    EXPECT_EQ(status, errSecSuccess);
    std::set<std::string> lost;
    for (const auto& [name, password] : left) lost.insert(name);
    return lost;
  }

  TemporaryPlace temporary_;
  Held held_;
  std::string content_;
  std::vector<std::set<std::string>> on_;
};

}  // namespace

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

TEST_F(SecFileFaults, Salvage) {
  const Salvaged store;
  const std::size_t step = inForm(131, 1), pairs = inForm(200, 20000);
  for (std::size_t at = 0; at < store.size(); at += step) store.expectWith({at}, at / step % 8);
  std::mt19937 random(3);
  for (std::size_t pair = 0; pair < pairs; ++pair)
    store.expectWith({random() % store.size(), random() % store.size()}, random() % 8);
}
