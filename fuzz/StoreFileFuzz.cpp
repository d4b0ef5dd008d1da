#include "tests/support/Fuzz.h"
#include "tests/support/SecFileTests.h"

// The store file as a whole, damaged in any way: each look-up gives what was kept or a status, a file that
// cannot be read stays as it is, and a change is refused or loses nothing.
//
// An input begins with a byte of flags; then it is a list of damages to a good file, each the place (two
// bytes), how many bytes (one) and the bytes that stand there from now on; or, by a flag, the file itself.
namespace {

enum Flags : unsigned { change = 1, cut = 2, replace = 4 };

const std::map<std::string, std::string> kept = {
    {"first", "one"}, {"second", ""}, {"third", std::string(300, 'x')}};

/// A good file, and where the damaged ones are put.
struct Original {
  Original() {
    Passwords passwords;
    fuzzRequire(passwords.open(files.place) == errSecSuccess, "a store can be made");
    for (const auto& [account, password] : kept)
      fuzzRequire(passwords.add(account, password) == errSecSuccess, "a store can be filled");
    passwords.storage.reset();
    content = readFile(files.place.store);
  }
  TemporaryPlace files;
  std::string content;
};

std::string damaged(std::string content, FuzzInput& input, bool isCut) {
  while (!input.atEnd()) {
    const std::size_t high = input.byte(), place = (high << 8 | input.byte()) % content.size();
    for (unsigned count = input.byte(), i = 0; i < count && !input.atEnd() && place + i < content.size(); ++i)
      content[place + i] = static_cast<char>(input.byte());
    if (isCut) return content.substr(0, place);
  }
  return content;
}

void lookUp(Passwords& passwords) {
  std::map<std::string, std::string> held;
  if (passwords.all(held) == errSecSuccess) fuzzRequire(held == kept, "all entries are given, or a status");
  for (const auto& [account, password] : kept) {
    Passwords::Found found;
    if (passwords.look(account, found) == errSecSuccess)
      fuzzRequire(found == password, "a look-up gives what was kept, or a status");
  }
}

void unlock(SecFileStorage& storage) {
  SecFileInfo info;
  if (storage.info(info) == errSecSuccess && info.locked) storage.unlock(std::as_bytes(std::span("pass")));
}

void addTo(Passwords& passwords, const std::string& path, const std::string& before) {
  if (passwords.add("fourth", "four") != errSecSuccess)
    return fuzzRequire(readFile(path) == before, "a change that is refused leaves the file as it is");
  std::map<std::string, std::string> held;
  if (passwords.all(held) != errSecSuccess) return;
  fuzzRequire(held.extract("fourth").mapped() == "four" && held == kept, "a change loses nothing");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Original original;
  FuzzInput input(data, size);
  const unsigned flags = input.byte();
  const std::string content =
      flags & replace ? std::string(input.rest()) : damaged(original.content, input, flags & cut);
  const std::string& path = original.files.place.store;
  writeFile(path, content);
  Passwords passwords;
  if (passwords.open(original.files.place, Passwords::refuse) == errSecSuccess) {
    lookUp(passwords);
    unlock(*passwords.storage);
  }
  fuzzRequire(readFile(path) == content, "reading leaves the file as it is");
  if (passwords.storage && flags & change) addTo(passwords, path, content);
  std::filesystem::remove(path + "-journal");
  return 0;
}
