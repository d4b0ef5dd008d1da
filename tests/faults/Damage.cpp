// Files with one bit flipped, and files cut short.
#include "Faults.h"

namespace {

/// A closed store of a few entries, one of them longer than a page, and its bytes.
class Specimen {
 public:
  Specimen() {
    Passwords passwords;
    passwords.open(temporary_.place);
    for (int number = 0; number < 10; ++number) held_["account " + std::to_string(number)] = "password";
    held_["account 9"] = std::string(5000, 'p');
    for (const auto& [account, password] : held_) passwords.add(account, *password);
    passwords.add("removed", "x");
    passwords.remove("removed");
    for (const char* absent : {"nobody", "removed"}) held_[absent] = std::nullopt;
    passwords.storage.reset();
    bytes_ = readFile(temporary_.place.store);
  }

  const std::string& bytes() const { return bytes_; }

  /// Whatever the store's file holds now: every look-up is right or a status, and nothing is written.
  void examine(const std::string& content, const std::string& what) {
    SCOPED_TRACE(what);
    writeFile(temporary_.place.store, content);
    count("tried");
    Passwords passwords;
    const OSStatus opened = passwords.open(temporary_.place);
    if (opened == errSecSuccess) {
      const bool right = lookUp(passwords);
      const OSStatus verified = passwords.storage->verify();
      EXPECT_TRUE(verified == errSecDecode || (verified == errSecSuccess && right))
          << "verified though damaged";
      count(verified == errSecSuccess ? "without effect" : "damaged");
      passwords.storage->salvage([&](const SecEntry& entry) { salvaged(entry); });
    }
    count(opened == errSecSuccess ? "opened" : "refused");
    EXPECT_TRUE(readFile(temporary_.place.store) == content) << "the file was changed";
    EXPECT_EQ(namesIn(temporary_.root / "data"), 1u) << "a file was made";
    if (opened == errSecSuccess) add(passwords);
  }

 private:
  bool lookUp(Passwords& passwords) {
    bool right = true;
    Passwords::Found found;
    for (const auto& [account, password] : held_) {
      const OSStatus status = passwords.look(account, found);
      EXPECT_TRUE(status != errSecSuccess || found == password) << "wrong answer for " << account;
      right = right && status == errSecSuccess;
    }
    return right;
  }

  void add(Passwords& passwords) {
    if (passwords.open(temporary_.place) != errSecSuccess || passwords.add("new", "y") != errSecSuccess)
      return;
    Passwords::Found found;
    count("added to");
    const OSStatus status = passwords.look("new", found);
    EXPECT_TRUE(status == errSecSuccess && found == "y") << "what was added is not there";
    lookUp(passwords);
  }

  void salvaged(const SecEntry& entry) {
    const SecText& account = *entry.attributes.account;
    const auto held = held_.find(std::string(account.begin(), account.end()));
    EXPECT_TRUE(held != held_.end() && held->second == textFrom(entry.secret)) << "salvaged a wrong one";
  }

  TemporaryPlace temporary_;
  std::map<std::string, Passwords::Found> held_;
  std::string bytes_;
};

}  // namespace

TEST_F(SecFileFaults, Flips) {
  const std::size_t step = inForm(41, 1);
  Specimen specimen;
  for (std::size_t at = 0; at < specimen.bytes().size(); at += step) {
    std::string bytes = specimen.bytes();
    bytes[at] = static_cast<char>(bytes[at] ^ (1 << (at / step % 8)));
    specimen.examine(bytes, "flip at " + std::to_string(at));
  }
}

TEST_F(SecFileFaults, Cuts) {
  const std::size_t step = inForm(97, 1);
  Specimen specimen;
  for (std::size_t length = 0; length < specimen.bytes().size(); length += step)
    specimen.examine(specimen.bytes().substr(0, length), "cut to " + std::to_string(length));
}
