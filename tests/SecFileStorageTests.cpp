#include <Foundation/NSString.h>
#include <Security/SecDefaultStorage.h>
#include <VXFoundation/VXFoundation.h>
#include <openssl/evp.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>

#include "tests/support/SecFileTests.h"
#include "tests/support/SecStorageConformance.h"

namespace {

namespace fs = std::filesystem;

void sha256(sqlite3_context* context, int, sqlite3_value** values) {
  unsigned char hash[32];
  EVP_Digest(sqlite3_value_blob(values[0]), static_cast<std::size_t>(sqlite3_value_bytes(values[0])), hash,
             nullptr, EVP_sha256(), nullptr);
  sqlite3_result_blob(context, hash, sizeof hash, SQLITE_TRANSIENT);
}

int appendValue(void* values, int, char** row, char**) {
  auto& all = *static_cast<std::string*>(values);
  all += (all.empty() ? "" : " ") + std::string(row[0] ? row[0] : "NULL");
  return 0;
}

/// Runs SQL on a file, as any other program could; returns the first column of the result. What `before` does
/// it does while the file is open.
std::string runSQL(
    const fs::path& path, const std::string& sql,
    const std::function<void(sqlite3*)>& before = [](sqlite3*) {}) {
  std::string values;
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  sqlite3_create_function(database, "sha256", 1, SQLITE_UTF8, nullptr, sha256, nullptr, nullptr);
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), appendValue, &values, nullptr), SQLITE_OK)
      << sql << ": " << sqlite3_errmsg(database);
  before(database);
  sqlite3_close(database);
  return values;
}

/// Leaves the store as a program does that is killed in the middle of a change.
void interrupt(const fs::path& store, const std::string& sql) {
  const fs::path journal = store.string() + "-journal", kept = journal.string() + ".kept";
  std::string half;
  runSQL(store, "BEGIN;" + sql, [&](sqlite3* database) {
    EXPECT_EQ(sqlite3_db_cacheflush(database), SQLITE_OK);
    fs::copy_file(journal, kept);
    half = readFile(store);
  });
  fs::rename(kept, journal);
  writeFile(store, half);
}

/// Returns what a shell prints that runs a command in a folder, on one line.
std::string runShell(const fs::path& folder, const std::string& command) {
  const auto close = [](FILE* pipe) { ::pclose(pipe); };
  const std::unique_ptr<FILE, decltype(close)> pipe(
      ::popen(("exec 2>&1; cd '" + folder.string() + "' && { " + command + "\n}").c_str(), "r"), close);
  std::string printed;
  for (int c; (c = std::fgetc(pipe.get())) != EOF;) printed += c == '\n' ? ' ' : static_cast<char>(c);
  if (printed.ends_with(' ')) printed.pop_back();
  return printed;
}

/// Returns what a store holds, a row for each entry as in format-1/entries.tsv.
std::multiset<std::vector<std::string>> rowsOf(SecFileStorage& storage) {
  const auto cell = [](const std::optional<SecText>& text) {
    if (!text) return std::string("-");
    return std::string(*NSString::stringWithCharacters(std::u16string(text->begin(), text->end())));
  };
  std::multiset<std::vector<std::string>> rows;
  const auto add = [&](const SecRow& row) {
    const SecAttributes& of = row.entry.attributes;
    const bool generic = of.itemClass == SecItemClass::genericPassword;
    rows.insert({generic ? "generic" : "internet", cell(of.account), cell(of.service), cell(of.server),
                 cell(of.path), of.port ? std::to_string(*of.port) : "-", cell(of.protocol), cell(of.label),
                 textFrom(row.entry.secret)});
    return true;
  };
  const auto read = [&](SecTransaction& store) {
    for (const auto itemClass : {SecItemClass::genericPassword, SecItemClass::internetPassword}) {
      SecAttributes wanted;
      wanted.itemClass = itemClass;
      store.find({wanted}, SecSecrets::read, add);
    }
  };
  EXPECT_EQ(storage.transact(SecStorage::Access::read, read), errSecSuccess);
  return rows;
}

/// Writes the parameters of a slot into every header, with the hash that makes it valid.
void writeSlot(const fs::path& store, const std::string& parameters) {
  const std::string content = "CAST(substr(body,21,56)||x'" + parameters + "'||substr(body,81,2908) AS BLOB)";
  runSQL(store, "UPDATE record SET body=CAST(substr(body,1,20)||" + content + "||sha256(" + content +
                    ") AS BLOB) WHERE number<0");
}

/// Returns every path below a folder, with its mode and, for a file, its content.
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

fs::path keyFileIn(const fs::path& folder) {
  for (const auto& item : fs::directory_iterator(folder))
    if (item.path().extension() == ".key") return item.path();
  ADD_FAILURE() << "no key file in " << folder;
  return folder;
}

/// A closed store with three passwords, and the paths of its files and folders.
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
    if (name == "root") return temporary.root;
    if (name == "store folder") return fs::path(temporary.place.store).parent_path();
    return name == "key folder" ? fs::path(temporary.place.keyFolder) : keyFileIn(temporary.place.keyFolder);
  }
  TemporaryPlace temporary;
};

/// Performs the steps of SecFileStorage.txt.
class StoreSteps {
 public:
  std::string resultOf(const std::string& step) {
    const auto [operation, rest] = cut(step, " ");
    const auto [first, second] = cut(rest, " ");
    if (operation == "move") {
      fs::rename(path(first), path(second));
    } else if (operation == "sql") {
      const std::string old = path("old");
      return runSQL(path("store"), (fs::exists(old) ? "ATTACH '" + old + "' AS old;" : "") + rest);
    } else if (operation == "interrupt") {
      interrupt(path("store"), rest);
    } else if (operation == "shell") {
      ::setenv("keys", place_.keyFolder.c_str(), 1);
      ::setenv("kept", VX_TESTS "/vectors/format-1", 1);
      return runShell(closed_.path("store folder"), rest);
    } else if (operation == "place") {
      place_.store = path(second);
      place_.ownsFolder = first == "own";
      place_.allowSharedFolder = first == "shared";
    } else if (operation == "slot") {
      writeSlot(path("store"), rest);
    } else if (operation == "files") {
      return std::to_string(snapshot(closed_.temporary.root).size());
    } else if (operation == "credential") {
      fs::create_directory(closed_.temporary.place.credentialFolder);
      writeFile(closed_.temporary.place.credentialFolder + "/vxfoundation.passphrase", rest + '\n');
    } else {
      return performed(operation, first, second);
    }
    return "";
  }

 private:
  /// A failure leaves the store as it was, unless it was migrated first.
  std::string performed(const std::string& operation, const std::string& who, const std::string& word) {
    const std::string before = fs::exists(path("store")) ? readFile(path("store")) : "";
    std::string given;
    const OSStatus status = perform(operation, hosts_[who], word, given);
    const bool isMigrated = fs::exists(path("store").string() + ".format-1");
    if (status != errSecSuccess && !before.empty() && !isMigrated) {
      EXPECT_EQ(readFile(path("store")), before);
    }
    return std::to_string(status) + given;
  }

  OSStatus perform(const std::string& operation, Passwords& host, const std::string& word,
                   std::string& given) {
    const SecSecret secret = secretFrom(word);
    if (operation == "open") return host.open(place_);
    if (operation == "find") return host.open(place_, Passwords::refuse);
    if (operation == "add") return host.add(word, "x");
    if (operation == "look") return look(host, word, given);
    if (operation == "verify") return host.storage->verify();
    if (operation == "salvage") return salvage(secret.bytes(), given);
    if (operation == "make") return SecFileStorage::make(place_, secret.bytes(), host.storage);
    if (operation == "remove") return host.remove(word);
    if (operation == "rotate") return host.storage->rotate();
    if (operation == "accept") return host.storage->accept();
    if (operation == "erase") return host.storage->eraseFormerCopies();
    if (operation == "info") return describe(host, given);
    if (operation == "holds") return holds(host, word);
    if (operation == "passphrase") return host.storage->setPassphrase(secret.bytes());
    if (operation == "no-passphrase") return host.storage->removePassphrase();
    if (operation == "unlock")
      return word.empty() ? host.storage->unlock() : host.storage->unlock(secret.bytes());
    if (operation == "add-passphrase") return host.storage->addPassphrase(secret.bytes());
    if (operation == "add-key") return host.storage->addKeyFile();
    if (operation == "add-recovery") return addRecovery(host);
    if (operation == "recover") return host.storage->unlock(recoveryTyped(word).bytes());
    if (operation == "drop") return drop(host, word);
    if (operation == "slots") return slots(host, given);
    if (operation == "ask") return ask(host, word), errSecSuccess;
    if (operation != "lock") throw std::invalid_argument("no operation " + operation);
    host.storage->lock();
    return errSecSuccess;
  }

  static OSStatus look(Passwords& host, const std::string& account, std::string& given) {
    Passwords::Found found;
    const OSStatus status = host.look(account, found);
    if (found) given = " " + *found;
    return status;
  }

  static OSStatus describe(Passwords& host, std::string& given) {
    SecStorageInfo info;
    const OSStatus status = host.storage->copyInfo(info);
    given = " " + std::to_string(info.entries) + (info.protection.ends_with(", locked") ? " locked" : "");
    return status;
  }

  static OSStatus holds(Passwords& host, const std::string& store) {
    std::multiset<std::vector<std::string>> expected;
    for (auto row : vectors("format-1/entries.tsv")) {
      if (row[0] != store) continue;
      std::transform(row.begin(), row.end(), row.begin(), unescaped);
      expected.emplace(row.begin() + 1, row.end());
    }
    EXPECT_EQ(rowsOf(*host.storage), expected);
    return host.storage->verify();
  }

  OSStatus addRecovery(Passwords& host) {
    SecSecret passphrase;
    EXPECT_EQ(SecFileStorage::makeRecoveryPassphrase(passphrase), errSecSuccess);
    recovery_ = textFrom(passphrase);
    return host.storage->addPassphrase(passphrase.bytes());
  }

  /// The recovery passphrase as somebody types it.
  SecSecret recoveryTyped(const std::string& manner) const {
    std::string typed = recovery_;
    EXPECT_EQ(typed.size(), 34u);
    if (manner == "capitals") std::transform(typed.begin(), typed.end(), typed.begin(), ::toupper);
    if (manner == "letters") std::erase(typed, '-');
    if (manner == "spaces") std::replace(typed.begin(), typed.end(), '-', ' ');
    if (manner == "wrong") typed[0] = typed[0] == 'a' ? 'b' : 'a';
    return secretFrom(typed);
  }

  static OSStatus drop(Passwords& host, const std::string& number) {
    SecFileInfo info;
    EXPECT_EQ(host.storage->info(info), errSecSuccess);
    return host.storage->removeSlot(number == "none" ? number
                                                     : info.keySlots.at(std::stoul(number) - 1).name);
  }

  static OSStatus slots(Passwords& host, std::string& given) {
    SecFileInfo info;
    const OSStatus status = host.storage->info(info);
    for (const SecFileSlotInfo& slot : info.keySlots) given += slot.keyFile.empty() ? " passphrase" : " key";
    return status;
  }

  /// Installs a function that returns one passphrase after another, "-" for none, and notes each reason.
  void ask(Passwords& host, const std::string& answers) {
    host.storage->setAsk([rest = answers](OSStatus reason) mutable -> std::optional<SecSecret> {
      const auto [answer, others] = cut(rest, ",");
      EXPECT_EQ(reason, answer.starts_with('+') ? errSecAuthFailed : errSecInteractionNotAllowed);
      rest = others;
      if (answer.ends_with('-')) return std::nullopt;
      return secretFrom(answer.starts_with('+') ? answer.substr(1) : answer);
    });
  }

  OSStatus salvage(SecFileStorage::Bytes passphrase, std::string& given) const {
    std::set<std::string> left;
    const OSStatus status = SecFileStorage::salvage(
        place_, passphrase, [&](const SecEntry& entry) { left.insert(textFrom(entry.secret)); });
    for (const std::string& password : left) given += (given.empty() ? " " : ", ") + password;
    return status;
  }

  fs::path path(const std::string& name) const {
    if (name == "other") return other_.path("store");
    return name == "store" ? closed_.path(name) : closed_.path("store folder") / name;
  }

  const ClosedStore closed_, other_;
  SecFilePlace place_ = closed_.temporary.place;
  std::map<std::string, Passwords> hosts_;
  std::string recovery_;
};

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

TEST(SecFileStorage, DefaultPlaceFollowsTheEnvironment) {
  const auto set = [](const char* name, const std::string& value) {
    value == "-" ? ::unsetenv(name) : ::setenv(name, value.c_str(), 1);
  };
  for (const auto& row : vectors("store-places.tsv")) {
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

TEST(SecFileStorage, RejectsForeignFilesInPlaceOfItsOwn) {
  const bool isRoot = ::geteuid() == 0;
  for (const auto& row : vectors("store-refusals.tsv")) {
    if (row[1].find("chown") != row[1].npos && !isRoot) continue;
    SCOPED_TRACE(testing::PrintToString(row));
    const ClosedStore closed;
    ::setenv("file", closed.path(row[0]).c_str(), 1);
    ASSERT_EQ(std::system(row[1].c_str()), 0);
    if (!row[2].empty()) runSQL(closed.path(row[0]), row[2]);
    const auto before = snapshot(closed.temporary.root);
    Passwords passwords;
    EXPECT_EQ(passwords.open(closed.temporary.place), std::stol(row[3]));
    EXPECT_EQ(snapshot(closed.temporary.root), before) << "something was written";
  }
  if (!isRoot) GTEST_SKIP() << "only root can give files away: the rows with chown were left out";
}

TEST(SecFileStorage, DetectsChangesMadeBehindItsBack) {
  for (const auto& row : vectors("store-attacks.tsv")) {
    SCOPED_TRACE(row[0]);
    const ClosedStore closed, other;
    const std::string path = closed.path("store");
    fs::copy_file(path, path + ".old");
    Passwords passwords;
    passwords.open(closed.temporary.place);
    EXPECT_EQ(passwords.update("ann", "new"), errSecSuccess);
    EXPECT_EQ(passwords.remove("cy"), errSecSuccess);
    passwords.storage.reset();
    runSQL(path,
           "ATTACH '" + path + ".old' AS old;ATTACH '" + other.path("store").string() +
               "' AS other;BEGIN;CREATE TEMP TABLE entry AS SELECT number,body,row_number() OVER () AS place"
               " FROM main.record WHERE number>240;" +
               row[1] + ";COMMIT");
    if (passwords.open(closed.temporary.place) == errSecDecode) continue;
    const std::map<std::string, Passwords::Found> truth = {
        {"ann", "new"}, {"bob", "password of bob"}, {"cy", std::nullopt}, {"nobody", std::nullopt}};
    for (const auto& [account, password] : truth) {
      Passwords::Found found;
      const OSStatus status = passwords.look(account, found);
      EXPECT_TRUE(status != errSecSuccess || found == password) << account;
    }
    EXPECT_EQ(passwords.storage->verify(), errSecDecode);
    EXPECT_EQ(passwords.add("dee", "x"), errSecDecode) << "a change to a store that is known to be damaged";
    EXPECT_EQ(SecFileStorage::salvage(closed.temporary.place, {}, [](const SecEntry&) {}), errSecSuccess);
  }
}

TEST(SecFileStorage, FollowsTheScript) {
  std::optional<StoreSteps> steps;
  const auto expectStep = [&](const std::string& step, const std::string& expected) {
    EXPECT_EQ(steps->resultOf(step), expected);
  };
  EXPECT_GT(runScript(
                "SecFileStorage.txt", [&] { steps.emplace(); }, expectStep),
            200u);
}

TEST(SecFileStorage, AFileThatLostMostEntriesShrinks) {
  const TemporaryPlace large, fresh;
  const auto name = [](std::size_t number) { return "account " + std::to_string(number); };
  const auto fill = [&](const TemporaryPlace& temporary, std::size_t count) {
    Passwords passwords;
    EXPECT_EQ(passwords.open(temporary.place), errSecSuccess);
    const auto add = [&](SecTransaction& store) {
      for (std::size_t number = 0; number < count; ++number)
        store.insert(Passwords::entryOf(name(number), "password"));
    };
    EXPECT_EQ(passwords.storage->transact(SecStorage::Access::change, add), errSecSuccess);
    return passwords;
  };
  fill(fresh, 1000);
  Passwords passwords = fill(large, 10000);
  for (std::size_t number = 1000; number < 10000; ++number)
    ASSERT_EQ(passwords.remove(name(number)), errSecSuccess);
  EXPECT_LE(fs::file_size(large.place.store), 2 * fs::file_size(fresh.place.store));
  EXPECT_EQ(passwords.storage->verify(), errSecSuccess);
}

TEST(SecFileStorage, AFailureThatTheWorkHidesUndoesTheTransaction) {
  const TemporaryPlace temporary;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  const auto hideFailure = [](SecTransaction& store) {
    store.insert(Passwords::entryOf("a", "b"));
    EXPECT_THROW(store.insert(Passwords::entryOf("a", "c")), SecFailure);
  };
  EXPECT_EQ(passwords.storage->transact(SecStorage::Access::change, hideFailure), errSecParam);
  Passwords::Found found;
  EXPECT_EQ(passwords.look("a", found), errSecSuccess);
  EXPECT_FALSE(found);
}

TEST(SecFileStorage, AnItemOpensALockedStoreByAskingTheHost) {
  const TemporaryPlace temporary;
  Passwords passwords;
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  EXPECT_EQ(passwords.add("ann", "secret"), errSecSuccess);
  EXPECT_EQ(passwords.storage->setPassphrase(secretFrom("one").bytes()), errSecSuccess);
  ASSERT_EQ(passwords.open(temporary.place), errSecSuccess);
  std::vector<OSStatus> reasons;
  passwords.storage->setAsk([&](OSStatus reason) -> std::optional<SecSecret> {
    reasons.push_back(reason);
    return secretFrom(reasons.size() == 1 ? "wrong" : "one");
  });
  secSetDefaultStorage(std::shared_ptr<SecStorage>(std::move(passwords.storage)));
  const auto item = VXGenericKeychainItem::findKeychainItemForUsername("ann", "service");
  EXPECT_TRUE(item->refreshItemFromKeychainIncludePassword(true));
  EXPECT_EQ(std::string(*item->password()), "secret");
  EXPECT_EQ(reasons, (std::vector<OSStatus>{errSecInteractionNotAllowed, errSecAuthFailed}));
  secSetDefaultStorage(SecStorageKind::memory);
}
