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
    for (const auto& [account, password] : held_) passwords.add(account, password);
    passwords.add("removed", "x");
    passwords.remove("removed");
    passwords.storage.reset();
    bytes_ = readFile(temporary_.place.store);
  }

  const std::string& bytes() const { return bytes_; }

  /// Whatever the store's file holds now: every look-up is right or a status, and nothing is written.
  void examine(Report& report, const std::string& content, const std::string& what) {
    writeFile(temporary_.place.store, content);
    report.count("tried");
    Passwords passwords;
    const OSStatus opened = passwords.open(temporary_.place);
    if (opened == errSecSuccess) {
      const bool right = lookUp(report, passwords, what);
      const OSStatus verified = passwords.storage->verify();
      report.expect(verified == errSecDecode || (verified == errSecSuccess && right),
                    what + ": verified though damaged");
      report.count(verified == errSecSuccess ? "without effect" : "damaged");
      passwords.storage->salvage([&](const SecEntry& entry) { salvaged(report, entry, what); });
    }
    report.count(opened == errSecSuccess ? "opened" : "refused");
    report.expect(readFile(temporary_.place.store) == content, what + ": the file was changed");
    report.expect(isAlone(), what + ": a file was made");
    if (opened == errSecSuccess) add(report, passwords, what);
  }

 private:
  bool lookUp(Report& report, Passwords& passwords, const std::string& what) {
    bool right = true;
    Passwords::Found found;
    for (const auto& [account, password] : held_) {
      const OSStatus status = passwords.look(account, found);
      report.expect(status != errSecSuccess || found == password, what + ": wrong answer for " + account);
      right = right && status == errSecSuccess;
    }
    for (const char* account : {"nobody", "removed"}) {
      const OSStatus status = passwords.look(account, found);
      report.expect(status != errSecSuccess || !found, what + ": an answer for " + account);
      right = right && status == errSecSuccess;
    }
    return right;
  }

  void add(Report& report, Passwords& passwords, const std::string& what) {
    if (passwords.open(temporary_.place) != errSecSuccess || passwords.add("new", "y") != errSecSuccess)
      return;
    Passwords::Found found;
    report.count("added to");
    const OSStatus status = passwords.look("new", found);
    report.expect(status == errSecSuccess && found == "y", what + ": what was added is not there");
    lookUp(report, passwords, what + ", added to");
  }

  void salvaged(Report& report, const SecEntry& entry, const std::string& what) {
    const SecText& account = *entry.attributes.account;
    const auto held = held_.find(std::string(account.begin(), account.end()));
    report.expect(held != held_.end() && held->second == textFrom(entry.secret),
                  what + ": salvaged a wrong one");
  }

  bool isAlone() const {
    const auto folder = std::filesystem::directory_iterator(temporary_.root / "data");
    return std::distance(begin(folder), end(folder)) == 1;
  }

  TemporaryPlace temporary_;
  Held held_;
  std::string bytes_;
};

}  // namespace

void flips(Report& report, std::size_t step) {
  Specimen specimen;
  for (std::size_t at = 0; at < specimen.bytes().size(); at += step) {
    std::string bytes = specimen.bytes();
    bytes[at] = static_cast<char>(bytes[at] ^ (1 << (at / step % 8)));
    specimen.examine(report, bytes, "flip at " + std::to_string(at));
  }
}

void cuts(Report& report, std::size_t step) {
  Specimen specimen;
  for (std::size_t length = 0; length < specimen.bytes().size(); length += step)
    specimen.examine(report, specimen.bytes().substr(0, length), "cut to " + std::to_string(length));
}
