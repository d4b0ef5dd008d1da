// Disks as a power cut may leave them: what was synced, and any part of what was not.
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <set>

#include "Calls.h"
#include "Faults.h"

namespace {

namespace fs = std::filesystem;
using Change = Calls::Change;

ino_t inodeOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status.st_ino;
}

/// Files and folders by their inodes.
class Disk {
 public:
  /// The content of a folder, in which everything was synced.
  explicit Disk(const fs::path& root) { readFolder(root); }

  void apply(const Change& change) {
    if (change.what == Change::named) {
      auto& names = folders_[change.file];
      change.number ? static_cast<void>(names[change.bytes] = change.number)
                    : static_cast<void>(names.erase(change.bytes));
      return;
    }
    std::string& content = files_[change.file];
    const std::size_t end = change.number + change.bytes.size();
    if (change.what == Change::cut || content.size() < end) content.resize(end);
    content.replace(change.number, change.bytes.size(), change.bytes);
  }

  void write(const fs::path& path, ino_t inode) const {
    if (const auto folder = folders_.find(inode); folder != folders_.end()) {
      fs::create_directory(path);
      fs::permissions(path, fs::perms(0700));
      for (const auto& [name, number] : folder->second) write(path / name, number);
    } else {
      const auto file = files_.find(inode);
      writeFile(path, file == files_.end() ? "" : file->second);
      fs::permissions(path, fs::perms(0600));
    }
  }

  void makeFolder(ino_t inode) { folders_[inode]; }

 private:
  void readFolder(const fs::path& path) {
    auto& names = folders_[inodeOf(path)];
    for (const auto& item : fs::directory_iterator(path)) {
      names[item.path().filename()] = inodeOf(item);
      item.is_directory() ? readFolder(item) : void(files_[inodeOf(item)] = readFile(item));
    }
  }

  std::map<ino_t, std::string> files_;
  std::map<ino_t, std::map<std::string, ino_t>> folders_;
};

/// The disk while changes are made one after another.
class Cache {
 public:
  explicit Cache(Disk synced) : synced_(std::move(synced)) {}

  /// Distinguishes folders, which may be empty, from files.
  void makeFoldersOf(const std::vector<Change>& changes) {
    for (const Change& change : changes)
      if (change.what == Change::named) synced_.makeFolder(change.file);
  }

  void add(const Change& change) {
    auto& waiting = waiting_[change.file];
    waiting.push_back(&change);
    if (change.what != Change::synced) return;
    waiting.pop_back();
    for (const Change* each : std::exchange(waiting, {})) synced_.apply(*each);
  }

  /// Returns what a power cut leaves: a share of 0, some or all of 4 parts of what was not synced, in any
  /// order in files, but names in the order in which they were made.
  Disk cut(unsigned share, std::mt19937& random) const {
    Disk disk = synced_;
    for (const auto& [file, waiting] : waiting_) {
      bool ends = false;
      for (const Change* change : waiting) {
        const auto isKept = [&] { return random() % 4 < share; };
        if (change->what == Change::named) ends = ends || !isKept();
        if (change->what == Change::written) applySectors(disk, *change, isKept);
        if (change->what == Change::cut ? isKept() : change->what == Change::named && !ends)
          disk.apply(*change);
      }
    }
    return disk;
  }

 private:
  template <class IsKept>
  static void applySectors(Disk& disk, const Change& change, IsKept isKept) {
    constexpr std::size_t sector = 512;
    for (std::size_t at = 0, size; at < change.bytes.size(); at += size) {
      size = sector - (change.number + at) % sector;
      if (isKept()) disk.apply({change.what, change.file, change.number + at, change.bytes.substr(at, size)});
    }
  }

  Disk synced_;
  std::map<ino_t, std::vector<const Change*>> waiting_;
};

/// What a store holds after so many calls; no value while there is no store.
struct Step {
  std::size_t calls;
  std::optional<Held> held;
};

std::optional<Held> heldBy(Passwords& passwords) {
  std::optional<Held> held;
  if (!passwords.storage) return held;
  EXPECT_EQ(passwords.all(held.emplace()), errSecSuccess);
  return held;
}

void judge(const TemporaryPlace& temporary, const Step& done, const Step& begun) {
  Passwords passwords;
  const OSStatus opened = openAny(temporary, passwords);
  if (!done.held && opened == errSecNoSuchKeychain) {
    EXPECT_EQ(passwords.open(temporary.place), errSecSuccess) << "a store cannot be made any more";
    return;
  }
  const Held held = readAll(temporary);
  if (!passwords.storage) return;
  EXPECT_TRUE(held == done.held || held == begun.held) << "an acknowledged change is lost, or half is kept";
  EXPECT_EQ(passwords.add("next", "x"), errSecSuccess) << "the store cannot be changed any more";
}

using Act = std::function<OSStatus(const TemporaryPlace&, Passwords&)>;

/// Performs the acts, and cuts the power after every call that they made.
void cutPowerDuring(const std::vector<Act>& acts, const TemporaryPlace& temporary, Passwords& passwords) {
  const ino_t root = inodeOf(temporary.root);
  Cache cache{Disk(temporary.root)};
  std::vector<Change> changes;
  std::vector<Step> steps{{0, heldBy(passwords)}};
  Calls::record(&changes);
  for (const Act& act : acts) {
    EXPECT_EQ(act(temporary, passwords), errSecSuccess);
    steps.push_back({changes.size(), heldBy(passwords)});
  }
  Calls::record(nullptr);
  passwords.storage.reset();
  cache.makeFoldersOf(changes);
  std::mt19937 random(4);
  std::size_t step = 0;
  for (std::size_t call = 0; call <= changes.size(); ++call) {
    if (call > 0) cache.add(changes[call - 1]);
    while (step + 1 < steps.size() && steps[step + 1].calls <= call) ++step;
    const std::size_t cuts = SecFileFaults::inForm(1, 20);
    for (std::size_t cut = 0; cut < cuts; ++cut) {
      const auto share = static_cast<unsigned>((call + cut) % 5);
      SCOPED_TRACE("call " + std::to_string(call) + " in step " + std::to_string(step) + ", share " +
                   std::to_string(share));
      for (const auto& item : fs::directory_iterator(temporary.root)) fs::remove_all(item);
      cache.cut(share, random).write(temporary.root, root);
      judge(temporary, steps[step], steps[std::min(step + 1, steps.size() - 1)]);
      count("states");
    }
  }
}

OSStatus changeMany(Passwords& passwords,
                    const std::function<void(SecTransaction&, const std::string&)>& change) {
  return passwords.storage->transact(SecStorage::Access::change, [&](SecTransaction& store) {
    for (int number = 0; number < 60; ++number) change(store, "many " + std::to_string(number));
  });
}

const Act addMany = [](auto&, Passwords& passwords) {
  return changeMany(passwords, [](SecTransaction& store, const std::string& name) {
    store.insert(Passwords::entryOf(name, std::string(5000, 'x')));
  });
};

/// After this, most of the file is not used, and it is written anew.
const Act removeMany = [](auto&, Passwords& passwords) {
  return changeMany(passwords, [](SecTransaction& store, const std::string& name) {
    std::int64_t number = 0;
    store.find({Passwords::named(name)}, SecSecrets::skip, [&](const SecRow& row) {
      number = row.number;
      return false;
    });
    store.remove(number);
  });
};

Act rekey(std::size_t number) {
  return [=](auto&, Passwords& passwords) { return rekeyings[number].act(passwords); };
}

const Act make = [](auto& place, auto& store) { return store.open(place.place); };

Act add(const std::string& name, const std::string& password) {
  return [=](auto&, auto& store) { return store.add(name, password); };
}

}  // namespace

TEST_F(SecFileFaults, PowerCuts) {
  const TemporaryPlace temporary;
  Passwords passwords;
  cutPowerDuring({make, add("ann", "1"), add("bob", std::string(9000, '2')),
                  [](auto&, auto& store) { return store.update("ann", std::string(5000, '3')); },
                  [](auto&, auto& store) { return store.remove("bob"); }, addMany, removeMany},
                 temporary, passwords);
}

TEST_F(SecFileFaults, PowerCutsOfRekeyings) {
  const TemporaryPlace temporary;
  Passwords passwords;
  cutPowerDuring({make, add("ann", std::string(5000, '3')), rekey(3), rekey(0), add("cy", "4"), rekey(1),
                  rekey(4), rekey(2)},
                 temporary, passwords);
}

TEST_F(SecFileFaults, PowerCutsOfMigrations) {
  for (const Rekeying& rekeying : {rekeyings[5], rekeyings[6]}) {
    const TemporaryPlace temporary;
    Passwords passwords;
    ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
    ASSERT_EQ(rekeying.prepare(temporary, passwords), errSecSuccess);
    cutPowerDuring({[&](auto&, auto& store) { return rekeying.act(store); },
                    [](auto&, auto& store) { return store.remove("account 7"); }},
                   temporary, passwords);
  }
}

/// A key file that is not needed any more goes after the change that made it so, and nothing is left of it.
TEST_F(SecFileFaults, KeyRemoval) {
  const TemporaryPlace temporary;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  const fs::path key = *fs::directory_iterator(temporary.place.keyFolder);
  const ino_t file = inodeOf(key), folder = inodeOf(temporary.place.keyFolder);
  const std::string zeros(fs::file_size(key), '\0');
  std::vector<Change> changes;
  Calls::record(&changes);
  EXPECT_EQ(rekeyings[0].act(passwords), errSecSuccess);
  Calls::record(nullptr);
  std::string done;
  for (const Change& change : changes) {
    if (change.what == Change::named && change.number == 0)
      done += change.bytes == key.filename() ? "unlinked " : "committed ";
    if (change.file == file)
      done += change.what == Change::synced ? "synced " : change.bytes == zeros ? "overwritten " : "changed ";
    if (change.file == folder && change.what == Change::synced) done += "folder synced";
  }
  EXPECT_EQ(done, "committed overwritten synced unlinked folder synced");
  count("removals");
}
