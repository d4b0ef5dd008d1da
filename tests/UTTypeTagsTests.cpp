// Tags of types, with the shared MIME databases of the system and, before them, one of this test's own.
#include <CoreServices/UTType.h>
#include <CoreServices/UTTypeTags.h>
#include <VXFoundation/VXURLCoding.h>
#include <VXFoundation/VXUTType.h>

#ifdef VX_GIO
#include <gio/gio.h>
#endif

#include <atomic>
#include <chrono>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <thread>

#include "tests/support/DynamicIdentifiers.h"
#include "tests/support/Files.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

namespace {

namespace fs = std::filesystem;

/// The user's database, made before anything reads one: GIO and the library then read the same ones.
class UserDatabase {
 public:
  UserDatabase() {
    fs::create_directories(folder_.root / "mime" / "packages");
    fs::copy(VX_TESTS "/vectors/user-types.xml", folder_.root / "mime" / "packages");
    setenv("XDG_DATA_HOME", folder_.root.c_str(), 1);
    setenv("XDG_DATA_DIRS", "/usr/share", 1);
    isMade_ = std::system(("update-mime-database " + path("") + " 2>/dev/null").c_str()) == 0;
  }
  /// Whether it exists, and next to it the system's.
  bool isMade() const { return isMade_ && fs::exists("/usr/share/mime/types"); }
  std::string path(const std::string& name) const { return folder_.root / "mime" / name; }

 private:
  TemporaryFolder folder_;
  bool isMade_ = false;
};

const UserDatabase userDatabase;

/// Tests of what the databases add.
class UTTypeTagsOfDatabase : public testing::Test {
 protected:
  void SetUp() override {
    if (!userDatabase.isMade()) GTEST_SKIP() << "shared-mime-info is not installed";
  }
};

#ifdef VX_GIO
std::set<std::string> databaseTypes() {
  std::set<std::string> types;
  for (const std::string& name : {userDatabase.path("types"), std::string("/usr/share/mime/types")}) {
    std::ifstream file(name);
    for (std::string line; std::getline(file, line);) types.insert(line);
  }
  return types;
}
#endif

const std::map<std::string, NSRef<NSString>> tagClasses = {
    {"extension", UTTagClassFilenameExtension}, {"MIME", UTTagClassMIMEType}, {"none", text("public.png")}};

std::string shown(const NSRefPtr<NSString>& identifier) {
  if (!identifier) return "nil";
  return UTTypeIsDynamic(identifier) ? shownPairs(*identifier) : static_cast<std::string>(*identifier);
}

std::string tagOf(const NSRefPtr<NSString>& type, const NSRef<NSString>& tagClass) {
  const auto tag = UTTypePreferredTag(type, tagClass);
  return tag ? static_cast<std::string>(*tag) : "";
}

struct BuiltInTags {
  std::string identifier;
  std::vector<std::string> extensions, mimeTypes = {}, kinds = {};
};

const std::vector<BuiltInTags> builtInTags = {
#include <CoreServices/Internal/UTBuiltInTags.inc>
};

}  // namespace

/// Every pair of the databases' types: what differs falls under one rule each.
TEST_F(UTTypeTagsOfDatabase, MIMETypesConformAsInGIO) {
#ifndef VX_GIO
  GTEST_SKIP() << "built without GIO";
#else
  struct Rule {
    bool byGIO;
    std::regex type, other;
    int atMost, count = 0;
  };
  std::vector<Rule> rules;
  for (const auto& row : vectors("mime-differences.tsv"))
    rules.push_back({row.at(0) == "GIO", std::regex(row.at(1)), std::regex(row.at(2)), std::stoi(row.at(3))});
  std::vector<std::pair<std::string, NSRef<NSString>>> types;
  for (const std::string& each : databaseTypes())
    types.emplace_back(each, UTTypeIdentifierForTag(UTTagClassMIMEType, text(each)));
  int conforming = 0, different = 0;
  for (const auto& [type, identifier] : types)
    for (const auto& [other, otherIdentifier] : types) {
      const bool byGIO = g_content_type_is_a(type.c_str(), other.c_str()) != FALSE;
      conforming += byGIO;
      if (VXUTTypeConformsTo(identifier, otherIdentifier) == byGIO) continue;
      ++different;
      int fitting = 0;
      for (Rule& rule : rules)
        if (rule.byGIO == byGIO && std::regex_match(type, rule.type) && std::regex_match(other, rule.other))
          ++rule.count, ++fitting;
      EXPECT_EQ(fitting, 1) << type << " to " << other << ": " << (byGIO ? "yes" : "no") << " says GIO";
    }
  std::cout << types.size() << " types; pairs that conform: " << conforming << ", that differ: " << different
            << '\n';
  for (const Rule& rule : rules) {
    std::cout << "rule " << &rule - rules.data() + 1 << ": " << rule.count << '\n';
    EXPECT_LE(rule.count, rule.atMost) << "rule " << &rule - rules.data() + 1;
  }
  EXPECT_LE(rules.size(), 10U);
  EXPECT_GT(types.size(), 500U);
  EXPECT_LT(different * 50, conforming);
#endif
}

TEST(UTTypeTags, ExtensionsOfDeclaredTypesLeadToThemAndBack) {
  for (const BuiltInTags& type : builtInTags) {
    for (const auto& [tagClass, tags] : {std::pair(UTTagClassFilenameExtension, &type.extensions),
                                         std::pair(UTTagClassMIMEType, &type.mimeTypes)}) {
      for (const std::string& tag : *tags)
        EXPECT_EQ(shown(UTTypeIdentifierForTag(tagClass, text(tag))), type.identifier) << tag;
      EXPECT_TRUE(tags->empty() || tagOf(text(type.identifier), tagClass) == tags->front())
          << type.identifier;
    }
    EXPECT_TRUE(UTTypeIsDeclared(text(type.identifier))) << type.identifier;
    for (const std::string& kind : type.kinds)
      EXPECT_TRUE(
          UTTypeConformsTo(UTTypeIdentifierForTag(UTTagClassMIMEType, text(kind)), text(type.identifier)))
          << kind;
  }
}

TEST_F(UTTypeTagsOfDatabase, TagsHaveIdentifiers) {
  for (const auto& row : byteVectors("type-identifiers.tsv")) {
    const auto conformingTo = row.at(2).empty() ? nullptr : NSRefPtr<NSString>(text(row[2]));
    const auto type = UTTypeIdentifierForTag(tagClasses.at(row[0]), text(row.at(1)), conformingTo);
    EXPECT_EQ(shown(type), row.at(3)) << row[1];
    EXPECT_TRUE(!type || !conformingTo || UTTypeConformsTo(type, conformingTo)) << row[1];
  }
}

TEST_F(UTTypeTagsOfDatabase, FileNamesHaveTypes) {
  for (const auto& row : byteVectors("file-names.tsv")) {
    const auto type = UTTypeIdentifierForFileName(text(row.at(0)));
    EXPECT_EQ(shown(type), row.at(1)) << row[0];
    EXPECT_EQ(tagOf(type, UTTagClassMIMEType), row.at(2)) << row[0];
    EXPECT_EQ(tagOf(type, UTTagClassFilenameExtension), row.at(3)) << row[0];
  }
}

/// Tags come back from the library's own decoder, from identifiers that no other one conforms to.
TEST(UTTypeTags, UnknownTagsComeBackFromTheirIdentifiers) {
  const std::vector<std::string> pieces = {"zz",       ":",
                                           "=",        " ",
                                           "%",        "%41",
                                           "?",        "A",
                                           "\xC3\x84", "\xF0\x9F\x98\x80",
                                           "/",        ".",
                                           "+",        std::string(1, '\0'),
                                           "\x7F"};
  std::mt19937 random(61);
  for (int round = 0; round < 20000; ++round) {
    std::string tag = "vxzz";  // as no known tag begins
    for (std::size_t i = random() % 12; i > 0; --i) tag += pieces[random() % pieces.size()];
    const bool isMIME = random() % 2;
    const auto& tagClass = isMIME ? UTTagClassMIMEType : UTTagClassFilenameExtension;
    const auto conformingTo = random() % 2 ? nullptr : NSRefPtr<NSString>(text("?" + tag));
    const NSRef<NSString> type = UTTypeIdentifierForTag(tagClass, text(tag), conformingTo);
    while (isMIME && tag.back() == ' ') tag.pop_back();
    std::string lower = tag;
    for (char& c : lower) c = c == 'A' ? 'a' : c;
    ASSERT_EQ(tagOf(type, tagClass), lower);
    const VXUTTypeDynamicIdentifier unpacked(*type);
    const auto packedTag = unpacked.pairs().back();
    ASSERT_EQ(packedTag.key, isMIME ? "m" : "e") << shown(type);
    ASSERT_EQ(static_cast<std::string>(*VXURLDecodeString(packedTag.value)), lower);
    ASSERT_EQ(unpacked.pairs().size(), conformingTo ? 2U : 1U);
    ASSERT_TRUE(!conformingTo || VXUTTypeConformsTo(type, conformingTo));
    ASSERT_TRUE(VXUTTypeConformsTo(type, "public.data"));
    ASSERT_FALSE(VXUTTypeConformsTo(text(packed("a=1")), type));
  }
}

TEST_F(UTTypeTagsOfDatabase, HostsDeclareTags) {
  const TemporaryFolder folder;
  const auto declare = [&](const std::string& type, const std::string& extensions,
                           const std::string& mimeType) {
    writeFile(folder.root / "Info.plist",
              "<plist version='1.0'><dict><key>UTExportedTypeDeclarations</key><array><dict>"
              "<key>UTTypeIdentifier</key><string>" +
                  type +
                  "</string>"
                  "<key>UTTypeConformsTo</key><string>public.json</string>"
                  "<key>UTTypeTagSpecification</key><dict>"
                  "<key>public.filename-extension</key>" +
                  extensions + "<key>public.mime-type</key><string>" + mimeType +
                  "</string>"
                  "<key>org.example.class</key><integer>1</integer></dict></dict></array></dict></plist>");
    return UTTypeDeclareTypesInFile(text((folder.root / "Info.plist").string()));
  };
  const auto before = UTTypeIdentifierForTag(UTTagClassFilenameExtension, "vxhost");
  const auto ofDatabase = UTTypeIdentifierForTag(UTTagClassMIMEType, "application/ld+json");
  EXPECT_TRUE(UTTypeIsDynamic(ofDatabase) && !UTTypeConformsTo(before, "public.json"));
  const std::string extensions = "<array><string>vxHost</string><string>png</string></array>";
  for (int twice = 0; twice < 2; ++twice)
    EXPECT_TRUE(declare("org.example.host", extensions, "Application/LD+JSON;v=1"));
  EXPECT_EQ(shown(UTTypeIdentifierForTag(UTTagClassFilenameExtension, "VXHOST")), "org.example.host");
  EXPECT_EQ(shown(UTTypeIdentifierForTag(UTTagClassFilenameExtension, "png")), "public.png");
  EXPECT_EQ(shown(UTTypeIdentifierForTag(UTTagClassFilenameExtension, "png", "public.json")),
            "org.example.host");
  // The database's extension for this MIME type, and identifiers from before.
  EXPECT_EQ(shown(UTTypeIdentifierForFileName("a.jsonld")), "org.example.host");
  EXPECT_EQ(shown(UTTypeTags("org.example.host", UTTagClassFilenameExtension)->description()),
            "(vxhost, png, jsonld)");
  EXPECT_TRUE(UTTypeConformsTo(before, "org.example.host") &&
              UTTypeConformsTo(ofDatabase, "org.example.host"));
}

TEST(UTTypeTags, NilAndUnknownGiveNothing) {
  for (const auto& [name, tagClass] : tagClasses) {
    EXPECT_FALSE(UTTypeIdentifierForTag(tagClass, nullptr) || UTTypePreferredTag(nullptr, tagClass) ||
                 UTTypeTags(nullptr, tagClass) || UTTypePreferredTag("public.item", tagClass));
    EXPECT_EQ(UTTypeTags("public.item", tagClass)->count() + UTTypeTags("none", tagClass)->count(), 0U)
        << name;
  }
  const NSRef<NSString> surrogate = NSString::stringWithCharacters(u"a.\xD800");
  EXPECT_FALSE(UTTypeIdentifierForTag(nullptr, "png") ||
               UTTypeIdentifierForTag(UTTagClassMIMEType, surrogate) ||
               UTTypeIdentifierForTag(UTTagClassFilenameExtension, "png", surrogate) ||
               UTTypeIdentifierForFileName(nullptr) || UTTypeIdentifierForFileName(surrogate) ||
               UTTypeTags("public.png", nullptr) || UTTypePreferredTag(surrogate, UTTagClassMIMEType));
  EXPECT_FALSE(UTTypeIsDeclared(nullptr) || UTTypeIsDynamic(nullptr) || UTTypeIsDeclared(surrogate));
  EXPECT_FALSE(UTTypeIsDynamic("dyn.a") || UTTypeIsDeclared("dyn.aqe8xc") || !UTTypeIsDynamic("dyn.aqe8xc"));
}

/// Replaces the user's database again and again, while others ask.
TEST_F(UTTypeTagsOfDatabase, AChangedDatabaseIsReadAgain) {
  std::atomic<bool> done = false;
  std::vector<std::thread> asking;
  for (int i = 0; i < 3; ++i)
    asking.emplace_back([&] {
      while (!done) EXPECT_EQ(shown(UTTypeIdentifierForFileName("a.rss")), "{m = application/rss+xml}");
    });
  for (const std::string type : {"application/x-vx-one", "application/x-vx-two"}) {
    writeFile(userDatabase.path("globs2"), "50:" + type + ":*.vxnew\n");
    const auto changed = [&] {
      return shown(UTTypeIdentifierForFileName("a.vxnew")) == "{m = " + type + "}";
    };
    for (int i = 0; i < 30 && !changed(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_TRUE(changed()) << type;
  }
  done = true;
  for (std::thread& each : asking) each.join();
}
