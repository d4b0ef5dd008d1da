#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <functional>
#include <set>
#include <sstream>

#include "SecFileTests.h"
#include "SecStorageConformance.h"

namespace {

namespace fs = std::filesystem;
using Row = std::vector<std::string>;

std::vector<Row> readTable(const std::string& name, std::size_t columns) {
  std::ifstream file(VX_VECTORS "/" + name);
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    std::istringstream fields(line);
    rows.emplace_back(columns);
    for (std::string& field : rows.back()) std::getline(fields, field, '\t');
  }
  EXPECT_GT(rows.size(), 5u) << name;
  return rows;
}

/// Runs SQL on a file as any other program could.
void runSQL(const fs::path& path, const std::string& sql) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sql << ": " << sqlite3_errmsg(database);
  sqlite3_close(database);
}

/// Every name below a folder, with its mode and, for a file, its content.
std::set<std::string> snapshot(const fs::path& folder) {
  std::set<std::string> seen;
  for (const auto& item : fs::recursive_directory_iterator(folder)) {
    struct stat status {};
    ::lstat(item.path().c_str(), &status);
    seen.insert(item.path().string() + " " + std::to_string(status.st_mode) + " " +
                (S_ISREG(status.st_mode) ? readFile(item.path()) : ""));
  }
  return seen;
}

fs::path onlyFileIn(const fs::path& folder) {
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1) << folder;
  return fs::directory_iterator(folder)->path();
}

/// A closed store with three passwords, and the paths of what it is made of.
struct ClosedStore {
  ClosedStore() {
    Passwords passwords;
    EXPECT_EQ(passwords.open(temporary.place), errSecSuccess);
    for (const char* account : {"ann", "bob", "cy"})
      EXPECT_EQ(passwords.add(account, std::string("password of ") + account), errSecSuccess);
  }
  fs::path path(const std::string& name) const {
    if (name == "store") return temporary.place.store;
    if (name == "journal") return temporary.place.store + "-journal";
    if (name == "store folder") return fs::path(temporary.place.store).parent_path();
    return name == "key folder" ? fs::path(temporary.place.keyFolder) : onlyFileIn(temporary.place.keyFolder);
  }
  TemporaryPlace temporary;
};

/// Puts something else in place of a file, as a row of store-refusals.tsv says.
void putStandIn(const fs::path& path, const std::string& standIn) {
  const std::string kind = standIn.substr(0, standIn.find(' '));
  const std::string detail = standIn.find(' ') == standIn.npos ? "" : standIn.substr(standIn.find(' ') + 1);
  if (kind == "mode" || kind == "owner") {
    if (!fs::exists(path)) writeFile(path, "");
    if (kind == "mode") ::chmod(path.c_str(), static_cast<mode_t>(std::stoul(detail, nullptr, 8)));
    if (kind == "owner") {
      EXPECT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    }
    return;
  }
  if (kind == "content") return writeFile(path, detail);
  if (kind == "sql") return runSQL(path, detail);
  const fs::path aside = path.string() + ".aside";
  if (fs::exists(path)) fs::rename(path, aside);
  if (kind == "link") fs::create_symlink(aside, path);
  if (kind == "pipe") ::mkfifo(path.c_str(), 0600);
  if (kind == "folder") fs::create_directory(path);
  if (kind != "other") return;
  runSQL(path, "CREATE TABLE t(a)");
  ::chmod(path.c_str(), 0600);
}

/// A slot as docs/credential-store.md describes it, written with the hash that makes it a whole one.
void writeSlot(const fs::path& store, const std::string& parameters) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(store.c_str(), &database), SQLITE_OK);
  sqlite3_create_function(
      database, "sha256", 1, SQLITE_UTF8, nullptr,
      [](sqlite3_context* context, int, sqlite3_value** values) {
        unsigned char hash[32];
        EVP_Digest(sqlite3_value_blob(values[0]), static_cast<std::size_t>(sqlite3_value_bytes(values[0])),
                   hash, nullptr, EVP_sha256(), nullptr);
        sqlite3_result_blob(context, hash, sizeof hash, SQLITE_TRANSIENT);
      },
      nullptr, nullptr);
  const std::string content = "x'" + parameters + "'||substr(slot,5,76)";
  const std::string sql = "UPDATE store SET slot=CAST(" + content +
                          "||sha256(CAST('VXFoundation slot'||x'00000001'||id||" +
                          content + " AS BLOB)) AS BLOB)";
  ASSERT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(database);
  ASSERT_EQ(sqlite3_changes(database), 1);
  sqlite3_close(database);
}

}  // namespace

TEST(SecFileStorage, Conforms) {
  std::vector<std::unique_ptr<TemporaryPlace>> places;
  SecStorageConformance::expect([&]() -> std::shared_ptr<SecStorage> {
    places.push_back(std::make_unique<TemporaryPlace>());
    std::unique_ptr<SecFileStorage> storage;
    EXPECT_EQ(SecFileStorage::open(places.back()->place, Passwords::make, storage), errSecSuccess);
    return storage;
  });
}

TEST(SecFileStorage, IsWhereTheEnvironmentSays) {
  const auto set = [](const char* name, const std::string& value) {
    value == "-" ? ::unsetenv(name) : ::setenv(name, value.c_str(), 1);
  };
  for (const Row& row : readTable("store-places.tsv", 5)) {
    set("XDG_DATA_HOME", row[0]);
    set("XDG_CONFIG_HOME", row[1]);
    set("HOME", row[2]);
    SecFilePlace place;
    EXPECT_EQ(secDefaultFilePlace(place), row[3] == "-" ? errSecNotAvailable : errSecSuccess);
    if (row[3] == "-") continue;
    EXPECT_EQ(place.store, row[3]);
    EXPECT_EQ(place.keyFolder, row[4]);
    EXPECT_TRUE(place.ownsFolder);
  }
}

TEST(SecFileStorage, MakesPrivateFilesWhateverTheUmask) {
  for (const mode_t mask : {mode_t{0}, mode_t{0777}}) {
    const TemporaryPlace temporary;
    const mode_t before = ::umask(mask);
    Passwords passwords;
    EXPECT_EQ(passwords.open(temporary.place), errSecSuccess);
    EXPECT_EQ(passwords.add("ann", "secret"), errSecSuccess);
    ::umask(before);
    for (const auto& item : fs::recursive_directory_iterator(temporary.root))
      EXPECT_EQ(fs::status(item).permissions(), item.is_directory() ? fs::perms::owner_all : fs::perms(0600));
  }
}

TEST(SecFileStorage, RefusesWhatStandsInPlaceOfItsFiles) {
  for (const Row& row : readTable("store-refusals.tsv", 3)) {
    if (row[1] == "owner" && ::geteuid() != 0) continue;
    SCOPED_TRACE(row[0] + ": " + row[1]);
    const ClosedStore closed;
    putStandIn(closed.path(row[0]), row[1]);
    const auto before = snapshot(closed.temporary.root);
    Passwords passwords;
    EXPECT_EQ(passwords.open(closed.temporary.place), std::stol(row[2]));
    EXPECT_EQ(snapshot(closed.temporary.root), before) << "something was written";
  }
}

TEST(SecFileStorage, SeesWhatWasDoneBehindItsBack) {
  for (const Row& row : readTable("store-attacks.tsv", 2)) {
    SCOPED_TRACE(row[0]);
    const ClosedStore closed, other;
    const std::string path = closed.path("store");
    fs::copy_file(path, path + ".old");
    Passwords passwords;
    passwords.open(closed.temporary.place);
    EXPECT_EQ(passwords.update("ann", "new"), errSecSuccess);
    EXPECT_EQ(passwords.remove("cy"), errSecSuccess);
    passwords.storage.reset();
    runSQL(path, "ATTACH '" + path + ".old' AS old;ATTACH '" + other.path("store").string() +
                     "' AS other;BEGIN;" + row[1] + ";COMMIT");
    std::size_t seen = 0;
    if (passwords.open(closed.temporary.place) == errSecDecode) continue;
    const std::map<std::string, Passwords::Found> truth = {
        {"ann", "new"}, {"bob", "password of bob"}, {"cy", std::nullopt}, {"nobody", std::nullopt}};
    for (const auto& [account, password] : truth) {
      Passwords::Found found;
      const OSStatus status = passwords.look(account, found);
      EXPECT_TRUE(status != errSecSuccess || found == password) << account;
      seen += status == errSecDecode;
    }
    EXPECT_EQ(passwords.storage->verify(), errSecDecode);
    EXPECT_EQ(passwords.add("dee", "x"), errSecDecode) << "a change to a store that is known to be damaged";
    passwords.storage->salvage([&](const SecEntry& entry) { seen += !textFrom(entry.secret).empty(); });
    EXPECT_GT(seen, 0u);
  }
}

TEST(SecFileStorage, ReadsWhatIsLeftOfADamagedStore) {
  const ClosedStore closed;
  runSQL(closed.path("store"), "UPDATE store SET seal=x'';UPDATE entry SET body=x'' WHERE number=2");
  Passwords passwords;
  ASSERT_EQ(passwords.open(closed.temporary.place), errSecSuccess);
  std::set<std::string> left;
  EXPECT_EQ(passwords.storage->salvage([&](const SecEntry& entry) { left.insert(textFrom(entry.secret)); }),
            errSecSuccess);
  EXPECT_EQ(left, (std::set<std::string>{"password of ann", "password of cy"}));
}

TEST(SecFileStorage, OpensByThePassphraseThatWasSetLast) {
  const ClosedStore closed;
  const std::string keyFile = closed.path("key");
  Passwords first, second;
  Passwords::Found found;
  ASSERT_EQ(first.open(closed.temporary.place), errSecSuccess);
  EXPECT_EQ(first.storage->unlock(secretFrom("none").bytes()), errSecAuthFailed);
  EXPECT_EQ(first.storage->setPassphrase({}), errSecParam);
  EXPECT_EQ(first.storage->removePassphrase(), errSecParam);
  ASSERT_EQ(first.storage->setPassphrase(secretFrom("one").bytes()), errSecSuccess);
  ASSERT_EQ(first.storage->setPassphrase(secretFrom("two").bytes()), errSecSuccess);
  EXPECT_FALSE(fs::exists(keyFile));
  ASSERT_EQ(second.open(closed.temporary.place), errSecSuccess);
  EXPECT_EQ(second.look("ann", found), errSecInteractionNotAllowed);
  EXPECT_EQ(second.add("dee", "x"), errSecInteractionNotAllowed);
  EXPECT_EQ(second.storage->verify(), errSecInteractionNotAllowed);
  EXPECT_EQ(second.storage->unlock(), errSecInteractionNotAllowed);
  EXPECT_EQ(second.storage->unlock(secretFrom("one").bytes()), errSecAuthFailed);
  EXPECT_EQ(second.storage->unlock(secretFrom("two").bytes()), errSecSuccess);
  EXPECT_EQ(second.look("ann", found), errSecSuccess);
  EXPECT_EQ(found, "password of ann");
  EXPECT_EQ(second.storage->removePassphrase(), errSecSuccess);
  EXPECT_EQ(closed.path("key"), keyFile);
  first.storage->lock();
  EXPECT_EQ(first.look("ann", found), errSecInteractionNotAllowed);
  EXPECT_EQ(first.storage->unlock(), errSecSuccess);
  EXPECT_EQ(first.look("ann", found), errSecSuccess);
}

TEST(SecFileStorage, DerivesNoKeyFromExtremeParameters) {
  const ClosedStore closed;
  Passwords passwords;
  // Protection, N as a power of two, r, p: the last one alone is within bounds, and so only the wrong key.
  for (const char* parameters : {"02ff0801", "02130801", "02000801", "0211ff01", "02110101", "021108ff",
                                 "02110800", "00110801", "03110801"}) {
    writeSlot(closed.path("store"), parameters);
    EXPECT_EQ(passwords.open(closed.temporary.place), errSecDecode) << parameters;
  }
  writeSlot(closed.path("store"), "020e0801");
  ASSERT_EQ(passwords.open(closed.temporary.place), errSecSuccess);
  EXPECT_EQ(passwords.storage->unlock(secretFrom("any").bytes()), errSecAuthFailed);
}

TEST(SecFileStorage, FollowsItsFile) {
  const ClosedStore closed, other;
  Passwords passwords;
  Passwords::Found found;
  ASSERT_EQ(passwords.open(closed.temporary.place), errSecSuccess);
  const fs::path path = closed.path("store");
  fs::rename(path, path.string() + ".away");
  EXPECT_EQ(passwords.look("ann", found), errSecNoSuchKeychain);
  EXPECT_EQ(passwords.add("dee", "x"), errSecNoSuchKeychain);
  EXPECT_FALSE(fs::exists(path));
  fs::rename(other.path("store"), path);
  EXPECT_EQ(passwords.look("ann", found), errSecDataNotAvailable) << "a store whose key is elsewhere";
  fs::rename(path.string() + ".away", path);
  EXPECT_EQ(passwords.storage->unlock(), errSecSuccess);
  EXPECT_EQ(passwords.look("ann", found), errSecSuccess);
  EXPECT_EQ(found, "password of ann");
}

TEST(SecFileStorage, IsRefusedWhereNothingMayBeMadeOrChanged) {
  const TemporaryPlace empty;
  Passwords passwords;
  EXPECT_EQ(passwords.open(empty.place, Passwords::refuse), errSecNoSuchKeychain);
  EXPECT_EQ(passwords.open({empty.root / "none/store", empty.place.keyFolder, false}), errSecNoSuchKeychain);
  EXPECT_TRUE(snapshot(empty.root).empty());
  ASSERT_EQ(passwords.open(empty.place), errSecSuccess);
  const auto tryToAdd = [](SecTransaction& store) { return store.insert(Passwords::entryOf("a", "b")); };
  EXPECT_EQ(passwords.storage->transact(SecStorage::Access::read, tryToAdd), errSecReadOnly);
  const auto hideFailure = [](SecTransaction& store) -> OSStatus {
    store.insert(Passwords::entryOf("a", "b"));
    store.insert(Passwords::entryOf("a", "c"));
    return errSecSuccess;
  };
  EXPECT_EQ(passwords.storage->transact(SecStorage::Access::change, hideFailure), errSecDuplicateItem);
  std::map<std::string, std::string> held;
  EXPECT_EQ(passwords.all(held), errSecSuccess);
  EXPECT_TRUE(held.empty());
}

TEST(SecFileStorage, IsUsedByParentAndChildAfterAFork) {
  const TemporaryPlace temporary;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  ASSERT_EQ(passwords.add("before", "1"), errSecSuccess);
  const pid_t child = ::fork();
  for (int count = 0; count < 20; ++count) {
    const std::string account = (child ? "parent " : "child ") + std::to_string(count);
    const OSStatus status = passwords.add(account, "2");
    if (child == 0 && status != errSecSuccess) ::_exit(1);
    EXPECT_EQ(status, errSecSuccess);
  }
  if (child == 0) ::_exit(0);
  int result = -1;
  ::waitpid(child, &result, 0);
  EXPECT_EQ(result, 0);
  std::map<std::string, std::string> held;
  EXPECT_EQ(passwords.all(held), errSecSuccess);
  EXPECT_EQ(held.size(), 41u);
  EXPECT_EQ(passwords.storage->verify(), errSecSuccess);
}
