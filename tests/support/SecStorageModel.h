#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/support/KeychainSupport.h"

/// The four operations written as plainly as possible, on entries as scripts write them.
class SecStorageModel {
 public:
  using Map = std::map<std::string, std::string>;

  OSStatus add(const Map& entry) {
    if (holdsIdentity(identity(entry), nullptr)) return errSecDuplicateItem;
    entries_.push_back(entry);
    entries_.back().emplace("valueData", "");
    return errSecSuccess;
  }

  /// Returns the matches, the exact one first.
  std::vector<Map*> find(const Map& query, bool exactly) {
    std::vector<Map*> found;
    for (Map& entry : entries_)
      if (exactly ? identity(entry) == identity(query) : matches(query, entry)) found.push_back(&entry);
    std::stable_partition(found.begin(), found.end(),
                          [&](const Map* entry) { return identity(*entry) == identity(query); });
    return found;
  }

  OSStatus update(const Map& query, bool exactly, const Map& changes) {
    const auto found = find(query, exactly);
    if (found.empty()) return errSecItemNotFound;
    Map changed = *found[0];
    for (const auto& [key, value] : changes) changed[key] = value;
    if (holdsIdentity(identity(changed), found[0])) return errSecDuplicateItem;
    *found[0] = changed;
    return errSecSuccess;
  }

  OSStatus remove(const Map& query, bool exactly) {
    const auto removed = std::remove_if(entries_.begin(), entries_.end(), [&](const Map& entry) {
      return exactly ? identity(entry) == identity(query) : matches(query, entry);
    });
    if (removed == entries_.end()) return errSecItemNotFound;
    entries_.erase(removed, entries_.end());
    return errSecSuccess;
  }

 private:
  static Map identity(Map entry) {
    entry.erase("label");
    entry.erase("valueData");
    if (entry["class"] == "generic") return entry;
    entry.emplace("path", "");
    entry.emplace("port", "0");
    return entry;
  }

  static bool matches(const Map& query, const Map& entry) {
    const Map full = identity(entry);
    return std::all_of(query.begin(), query.end(), [&](const auto& wanted) {
      const auto held = full.find(wanted.first);
      return wanted.first == "label" || wanted.first == "valueData" ||
             (held != full.end() && held->second == wanted.second);
    });
  }

  bool holdsIdentity(const Map& wanted, const Map* except) const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [&](const Map& entry) { return &entry != except && identity(entry) == wanted; });
  }

  std::vector<Map> entries_;
};

/// Runs random operations on the default storage and on the model and compares every status and result.
class SecStorageComparison {
 public:
  /// A status for which `isEnd` is true, if there is one, ends the comparison without a failure.
  explicit SecStorageComparison(unsigned seed, std::function<bool(OSStatus)> isEnd = nullptr)
      : random_(seed), isEnd_(std::move(isEnd)) {}

  void run(int operations) {
    for (int i = 0; i < operations && !ended_ && !testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE("operation " + std::to_string(i));
      step();
    }
  }

 private:
  using Map = SecStorageModel::Map;

  void step() {
    const Map query = anyMap();
    const bool exactly = chance(3);
    const auto asked = mapOf(query, exactly ? " matchExactly=1" : "");
    switch (random_() % 8) {
      case 0:
        expectStatus(SecItemDelete(asked), model_.remove(query, exactly));
        break;
      case 1:
      case 2: {
        Map changes = anyMap();
        changes["class"] = query.at("class");
        if (changes["class"] != anyClassOf(changes)) break;
        expectStatus(SecItemUpdate(asked, mapOf(changes)), model_.update(query, exactly, changes));
        break;
      }
      case 3:
        expectMatches(query, exactly);
        break;
      default:
        expectStatus(SecItemAdd(mapOf(query)), model_.add(query));
    }
  }

  void expectStatus(OSStatus status, OSStatus expected) {
    ended_ = isEnd_ && isEnd_(status);
    if (!ended_) {
      EXPECT_EQ(status, expected);
    }
  }

  void expectMatches(const Map& query, bool exactly) {
    const std::size_t limit = random_() % 3;  // 0 for one match without an array
    std::string asked = exactly ? " matchExactly=1" : "";
    if (limit > 0) asked += " matchLimit=" + std::to_string(limit * 3);
    const auto found = model_.find(query, exactly);
    NSRefPtr<NSObject> result;
    expectStatus(SecItemCopyMatching(mapOf(query, asked + " returnAttributes=1 returnData=1"), &result),
                 found.empty() ? errSecItemNotFound : errSecSuccess);
    if (found.empty() || ended_) return;
    const auto expected = NSMutableArray::array();
    for (std::size_t i = 0; i < std::min(found.size(), limit * 3); ++i) expected->addObject(mapOf(*found[i]));
    const NSRef<NSObject> wanted = limit > 0 ? NSRef<NSObject>(expected) : mapOf(*found[0]);
    EXPECT_TRUE(result && result->isEqual(wanted)) << shown(result) << "\n" << shown(wanted);
  }

  /// Returns a map of either class, in which anything else may be missing. There are few values, so that
  /// entries coincide.
  Map anyMap() {
    Map map{{"class", chance(2) ? "generic" : "internet"}};
    const bool generic = map["class"] == "generic";
    const auto put = [&](const char* key, std::initializer_list<const char*> values) {
      if (chance(2)) map[key] = values.begin()[random_() % values.size()];
    };
    put("account", {"ann", "bob", ""});
    put("label", {"L", ""});
    put("valueData", {"one", "two", ""});
    if (generic) put("service", {"mail", "chat"});
    if (generic) return map;
    put("server", {"host", "other"});
    put("path", {"", "/a"});
    put("port", {"0", "80"});
    put("protocol", {"http", "ssh"});
    return map;
  }

  static std::string anyClassOf(const Map& map) {
    const bool internet =
        map.contains("server") || map.contains("path") || map.contains("port") || map.contains("protocol");
    return internet ? "internet" : map.contains("service") ? "generic" : map.at("class");
  }

  NSRef<NSDictionary> mapOf(const Map& map, const std::string& more = "") {
    std::string written;
    for (const auto& [key, value] : map) written += key + "=" + value + " ";
    return writtenMap(written + more);
  }

  bool chance(unsigned oneIn) { return random_() % oneIn == 0; }

  std::mt19937 random_;
  std::function<bool(OSStatus)> isEnd_;
  bool ended_ = false;
  SecStorageModel model_;
};
