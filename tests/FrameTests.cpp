#include <sys/wait.h>
#include <unistd.h>

#include <Foundation/NSLocale.h>
#include <Foundation/NSPropertyList.h>

#include <filesystem>
#include <map>

#include "Support.h"

namespace files = std::filesystem;

namespace {

RefPtr<NSObject> propertyList(std::string_view body) {
  const std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\">" + std::string(body) + "</plist>";
  return NSPropertyListWithData(std::as_bytes(std::span(xml)));
}

// A copy of the library in a folder of its own, whose resources a test damages.
class MovedLibrary : public testing::Test {
 protected:
  MovedLibrary() {
    files::create_directories(folder_);
    files::copy_file(VX_LIBRARY, folder_ / "libVXFoundation.so.1");
    files::copy(files::path(VX_LIBRARY).parent_path() / "Resources", folder_ / "Resources",
                files::copy_options::recursive);
  }
  ~MovedLibrary() override { files::remove_all(folder_); }

  void replace(const char* file, std::string_view content) {
    std::ofstream(folder_ / "Resources" / file) << content;
  }

  // What a host that loads this copy is told for "Cancel".
  std::string cancel(const std::string& language) const {
    const std::string command = "env -u LC_ALL -u LC_MESSAGES LANGUAGE=" + language +
                                " LANG=en_GB.UTF-8 LD_LIBRARY_PATH=" + folder_.string() + " " VX_FRAME_HOST;
    FILE* output = popen(command.c_str(), "r");
    char line[100] = "";
    if (!fgets(line, sizeof line, output)) ADD_FAILURE() << "the host printed nothing";
    EXPECT_EQ(pclose(output), 0);
    return line;
  }

  files::path folder_ = files::temp_directory_path() / ("vxfoundation-frame-" + std::to_string(getpid()));
};

}  // namespace

TEST(Frame, ConstantsAreWhatHostsRelyOn) {
  EXPECT_EQ(static_cast<std::string>(*VXFoundationBundleIdentifier), "org.vxfoundation.VXFoundation");
  EXPECT_EQ(static_cast<std::string>(*VXSubclassResponsibilityException),
            "VXSubclassResponsibilityException");
}

TEST(Frame, LanguagesComeInTheOrderOfGettext) {
  for (const auto& row : vectors("languages.tsv")) {
    std::map<std::string, std::string> variables;
    for (std::size_t i = 0; i < 4; ++i)
      if (row[i] != "-") variables[std::vector{"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}[i]] = row[i];
    std::string names;
    for (const std::string& name : NSPreferredLanguages([&](const char* variable) {
           const auto found = variables.find(variable);
           return found == variables.end() ? nullptr : found->second.c_str();
         }))
      names.append(names.empty() ? "" : " ").append(name);
    EXPECT_EQ(names, row[4]) << testing::PrintToString(row);
  }
}

TEST(Frame, EveryLanguageHasEveryKey) {
  const files::path resources = files::path(VX_LIBRARY).parent_path() / "Resources";
  const auto table = [&](const std::string& language) {
    return dynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(
        (resources / (language + ".lproj") / "Localizable.strings").string()));
  };
  const RefPtr<NSDictionary> english = table("en");
  ASSERT_EQ(english->count(), 5U);
  english->enumerateKeysAndObjectsUsingBlock([](Object key, const Ref<NSObject>& value, bool*) {
    EXPECT_TRUE(value->isEqual(key.get())) << "the keys are the English texts";
  });
  for (const char* language : {"de", "fr", "es", "ja", "zh_CN"}) {
    const RefPtr<NSDictionary> translated = table(language);
    ASSERT_TRUE(translated) << language;
    EXPECT_EQ(translated->count(), english->count());
    for (const Ref<NSObject> key : *english) {
      const RefPtr<NSObject> translation = translated->objectForKey(key);
      ASSERT_TRUE(translation) << language << *key->description();
      EXPECT_FALSE(translation->isEqual(key)) << language << *key->description();
    }
  }
}

TEST_F(MovedLibrary, IsFoundWhereItWasLoadedFrom) {
  EXPECT_EQ(cancel("de"), "Abbrechen");
  EXPECT_EQ(cancel("xx:fr"), "Annuler");
  EXPECT_EQ(cancel("C:fr"), "Cancel");
}

TEST_F(MovedLibrary, DamagedFilesCountAsNotThere) {
  replace("de.lproj/Localizable.strings", "<plist><dict><key>Cancel</key><string>Abbre");
  EXPECT_EQ(cancel("de"), "Cancel");
  EXPECT_EQ(cancel("de:fr"), "Annuler");
  replace("fr.lproj/Localizable.strings", "<plist><dict><key>Cancel</key><true/></dict></plist>");
  EXPECT_EQ(cancel("fr"), "Cancel") << "a value that is no text";
  replace("Info.plist", "\xFF\xFE no property list");
  EXPECT_EQ(cancel("de"), "(no bundle)");
}

TEST_F(MovedLibrary, WithoutResourcesHasNoBundle) {
  files::remove_all(folder_ / "Resources");
  EXPECT_EQ(cancel("de"), "(no bundle)");
}

TEST(PropertyLists, HoldEveryKindOfValue) {
  const auto map = dynamicCast<NSDictionary>(propertyList(
      "<dict><key>b</key><true/><key>a</key><array><integer> -7 </integer><string> &lt;\xC3\xA9 </string>"
      "<array/><real>1.5</real></array></dict>"));
  ASSERT_TRUE(map);
  const auto expected = NSDictionary::dictionaryWithObjectsAndKeys(
      {{NSNumber::numberWithBool(true), "b"},
       {NSArray::arrayWithObjects({NSNumber::numberWithInteger(-7), " <\xC3\xA9 ", NSArray::array(), "1.5"}),
        "a"}});
  EXPECT_TRUE(map->isEqual(expected)) << *map->description();
}

TEST(PropertyLists, WhatIsNoneIsAbsent) {
  for (const auto& row : vectors("not-property-lists.tsv")) EXPECT_FALSE(propertyList(row[0])) << row[0];
  std::string deep;
  for (int i = 0; i < 200; ++i) deep = "<array>" + deep + "</array>";
  EXPECT_FALSE(propertyList(deep));
  const std::string entity = "<!DOCTYPE plist [<!ENTITY a \"aaaa\">]><plist><string>&a;</string></plist>";
  EXPECT_FALSE(NSPropertyListWithData(std::as_bytes(std::span(entity))));
  EXPECT_FALSE(NSPropertyListWithContentsOfFile("/nowhere/Info.plist"));
  EXPECT_FALSE(NSPropertyListWithContentsOfFile("/"));
}

TEST(PropertyLists, EveryCutIsAbsentOrWhole) {
  const std::string xml =
      "<plist><dict><key>a</key><array><integer>1</integer><false/></array></dict></plist>";
  for (std::size_t length = 0; length < xml.size(); ++length)
    EXPECT_FALSE(NSPropertyListWithData(std::as_bytes(std::span(xml.data(), length)))) << length;
  EXPECT_TRUE(NSPropertyListWithData(std::as_bytes(std::span(xml))));
}

TEST(Bundles, AnswerForWhatIsNotThere) {
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.vxfoundation.nobody"));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(nullptr));
  EXPECT_FALSE(NSBundle::bundleWithPath("/nowhere"));
  const auto bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  ASSERT_TRUE(bundle);
  EXPECT_TRUE(bundle->localizedStringForKey("no such key", "", nullptr)->isEqual(text("no such key")));
  EXPECT_TRUE(bundle->localizedStringForKey("no such key", "value", nullptr)->isEqual(text("value")));
  EXPECT_TRUE(bundle->localizedStringForKey(nullptr, nullptr, nullptr)->isEqual(NSString::string()));
  EXPECT_TRUE(bundle->localizedStringForKey("Cancel", "", "no such table")->isEqual(text("Cancel")));
}
