#include <unistd.h>

#include <Foundation/NSLocale.h>
#include <Foundation/NSPropertyList.h>

#include <algorithm>
#include <filesystem>

#include "Bytes.h"
#include "Support.h"

namespace files = std::filesystem;

namespace {

const files::path resources = files::path(VX_LIBRARY).parent_path() / "Resources";

RefPtr<NSObject> propertyList(std::string_view body) {
  const std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\">" + std::string(body) + "</plist>";
  return NSPropertyListWithData(std::as_bytes(std::span(xml)));
}

// A copy of the library in a folder of its own, whose resources a test damages.
class MovedLibrary {
 public:
  MovedLibrary() {
    files::create_directories(folder_);
    files::copy_file(VX_LIBRARY, folder_ / "libVXFoundation.so.1");
    files::copy(resources, folder_ / "Resources", files::copy_options::recursive);
  }
  ~MovedLibrary() { files::remove_all(folder_); }

  // Puts the content, or nothing when that is "-", in the place of what is there.
  void replace(const std::string& name, const std::string& content) {
    files::remove_all(folder_ / name);
    files::create_directories((folder_ / name).parent_path());
    if (content != "-") std::ofstream(folder_ / name) << content;
  }

  // What a host that loads this copy is told for "Cancel".
  std::string cancel(const std::string& language) const {
    return outputOf("env -u LC_ALL -u LC_MESSAGES LANGUAGE=" + language +
                    " LANG=en_GB.UTF-8 LD_LIBRARY_PATH=" + folder_.string() + " " VX_FRAME_HOST);
  }

 private:
  files::path folder_ = files::temp_directory_path() / ("vxfoundation-frame-" + std::to_string(getpid()));
};

}  // namespace

TEST(Frame, LanguagesComeInTheOrderOfGettext) {
  for (const auto& row : vectors("languages.tsv")) {
    const auto variable = [&](std::string_view name) {
      const std::vector<std::string_view> columns = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
      const auto& cell = row[std::size_t(std::find(columns.begin(), columns.end(), name) - columns.begin())];
      return cell == "-" ? nullptr : cell.c_str();
    };
    std::string names;
    for (const std::string& name : NSPreferredLanguages(variable))
      names.append(names.empty() ? "" : " ").append(name);
    EXPECT_EQ(names, row[4]) << testing::PrintToString(row);
  }
}

TEST(Frame, EveryLanguageHasEveryKeyWhichIsTheEnglishText) {
  RefPtr<NSDictionary> english;
  for (const std::string language : {"en", "de", "fr", "es", "ja", "zh_CN"}) {
    const auto file = resources / (language + ".lproj") / "Localizable.strings";
    const auto texts = dynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(file.string()));
    ASSERT_TRUE(texts) << language;
    EXPECT_EQ(texts->count(), 5U) << language;
    if (!english) english = texts;
    for (const Ref<NSObject> key : *english) {
      const RefPtr<NSObject> translation = texts->objectForKey(key);
      ASSERT_TRUE(translation) << language << *key->description();
      EXPECT_EQ(translation->isEqual(key), texts == english) << language << *key->description();
    }
  }
}

TEST(Frame, ACopyOfTheLibraryAnswersFromItsOwnResources) {
  for (const auto& row : byteVectors("moved-libraries.tsv")) {
    MovedLibrary library;
    if (!row[0].empty()) library.replace(row[0], row[1]);
    EXPECT_EQ(library.cancel(row[2]), row[3]) << testing::PrintToString(row);
  }
}

TEST(PropertyLists, AreTheValuesOfTheTableNoTwoOfWhichAreEqual) {
  const auto rows = byteVectors("property-lists.tsv");
  for (const auto& row : rows)
    for (const auto& other : rows) {
      const RefPtr<NSObject> value = propertyList(row[0]), another = propertyList(other[0]);
      ASSERT_TRUE(value && another) << row[0] << other[0];
      EXPECT_EQ(bytesOf(value->description()), row[1]) << row[0];
      EXPECT_EQ(value->isEqual(another), &row == &other) << row[0] << other[0];
    }
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
  const std::string_view xml =
      "<plist><dict><key>a</key><array><integer>1</integer><false/></array></dict></plist>";
  for (std::size_t length = 0; length <= xml.size(); ++length) {
    const auto cut = NSPropertyListWithData(std::as_bytes(std::span(xml.substr(0, length))));
    EXPECT_EQ(bool(cut), length == xml.size()) << length;
  }
}

TEST(Bundles, AnswerForWhatIsNotThere) {
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.vxfoundation.nobody"));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(nullptr));
  EXPECT_FALSE(NSBundle::bundleWithPath("/nowhere"));
}

TEST(Bundles, TranslateAsTheTableSays) {
  setenv("LC_ALL", "en_GB.UTF-8", 1);
  setenv("LANGUAGE", "de", 1);
  const auto bundle = NSBundle::bundleWithIdentifier("org.vxfoundation.VXFoundation");
  ASSERT_TRUE(bundle);
  const auto cell = [](const std::string& said) {
    return said == "-" ? nullptr : RefPtr<NSString>(text(said));
  };
  for (const auto& row : vectors("localized-strings.tsv"))
    EXPECT_EQ(bytesOf(bundle->localizedStringForKey(cell(row[0]), cell(row[1]), cell(row[2]))), row[3])
        << testing::PrintToString(row);
}
