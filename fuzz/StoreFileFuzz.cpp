#include "tests/support/Fuzz.h"
#include "tests/support/SecFileTests.h"

// The store file as a whole, damaged in any way: each lookup returns what was kept or a status, a store that
// verifies returns all of it, only what was kept is salvaged, a file that cannot be read stays as it is, and
// a change is refused or loses nothing.
//
// An input begins with a byte of flags. The rest is the file itself, or a list of damages to a good file,
// each the place (two bytes), the number of bytes (one), and the bytes to put there or to combine by XOR with
// those there.
namespace {

enum Flags : unsigned { change = 1, cut = 2, replace = 4, flip = 8 };

const std::map<std::string, std::string> kept = {
    {"first", "one"}, {"second", ""}, {"third", std::string(5000, 'x')}};

Passwords::Found keptFor(const std::string& account) {
  const auto found = kept.find(account);
  return found == kept.end() ? std::nullopt : Passwords::Found(found->second);
}

/// A good file, and the place for damaged ones.
struct Original {
  Original() {
    Passwords passwords;
    fuzzRequire(passwords.open(files.place) == errSecSuccess, "a store can be made");
    for (const auto& [account, password] : kept)
      fuzzRequire(passwords.add(account, password) == errSecSuccess, "a store can be filled");
    fuzzRequire(passwords.add("removed", "x") == errSecSuccess, "a store can be filled");
    fuzzRequire(passwords.remove("removed") == errSecSuccess, "an entry can be removed");
    passwords.storage.reset();
    content = readFile(files.place.store);
  }
  TemporaryPlace files;
  std::string content;
};

const Original& original() {
  static const Original only;
  return only;
}

std::string damaged(std::string content, FuzzInput& input, unsigned flags) {
  while (!input.atEnd()) {
    const std::size_t high = input.byte(), place = (high << 8 | input.byte()) % content.size();
    for (unsigned count = input.byte(), i = 0; i < count && !input.atEnd() && place + i < content.size(); ++i)
      content[place + i] = static_cast<char>(input.byte()) ^ (flags & flip ? content[place + i] : '\0');
    if (flags & cut) return content.substr(0, place);
  }
  return content;
}

void read(Passwords& passwords) {
  std::map<std::string, std::string> held;
  bool readable = passwords.all(held) == errSecSuccess;
  fuzzRequire(!readable || held == kept, "all entries are returned, or a status");
  for (const char* account : {"first", "second", "third", "removed"}) {
    Passwords::Found found;
    const bool looked = passwords.look(account, found) == errSecSuccess;
    fuzzRequire(!looked || found == keptFor(account), "a lookup returns what was kept, or a status");
    readable = readable && looked;
  }
  fuzzRequire(readable || passwords.storage->verify() != errSecSuccess, "a store that verifies can be read");
}

void salvage(const SecFilePlace& place) {
  SecFileStorage::salvage(place, {}, [](const SecEntry& entry) {
    const SecText& account = *entry.attributes.account;
    fuzzRequire(keptFor({account.begin(), account.end()}) == textFrom(entry.secret),
                "only what was kept is salvaged");
  });
}

void unlock(SecFileStorage& storage) {
  SecFileInfo info;
  if (storage.info(info) == errSecSuccess && info.locked) storage.unlock(std::as_bytes(std::span("pass")));
}

void addTo(Passwords& passwords, const std::string& path, const std::string& before) {
  if (passwords.add("fourth", "four") != errSecSuccess)
    return fuzzRequire(readFile(path) == before, "a refused change leaves the file as it is");
  std::map<std::string, std::string> held;
  if (passwords.all(held) != errSecSuccess) return;
  fuzzRequire(held.extract("fourth").mapped() == "four" && held == kept, "a change loses nothing");
}

/// Opens the store, which may be older than the one that an earlier input made of it.
bool open(Passwords& passwords) {
  if (passwords.open(original().files.place, Passwords::refuse) != errSecSuccess) return false;
  static_cast<void>(passwords.storage->accept());
  return true;
}

}  // namespace

std::size_t fuzzedStoreFileSize() { return original().content.size(); }

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const unsigned flags = input.byte();
  const std::string content =
      flags & replace ? std::string(input.rest()) : damaged(original().content, input, flags);
  const SecFilePlace& place = original().files.place;
  writeFile(place.store, content);
  Passwords passwords;
  if (open(passwords)) {
    read(passwords);
    unlock(*passwords.storage);
  }
  salvage(place);
  fuzzRequire(readFile(place.store) == content, "reading leaves the file as it is");
  fuzzRequire(namesIn(original().files.root / "data") == 1, "reading makes no file");
  if (flags & change && open(passwords)) addTo(passwords, place.store, content);
  std::filesystem::remove(place.store + "-journal");
  return 0;
}
