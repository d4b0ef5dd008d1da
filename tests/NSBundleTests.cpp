#include <unistd.h>

#include <Foundation/NSPropertyList.h>

#include <filesystem>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

namespace files = std::filesystem;

namespace {

const files::path resources = files::path(VX_LIBRARY).parent_path() / "Resources";

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
                    " LANG=en_GB.UTF-8 LD_LIBRARY_PATH=" + folder_.string() + " " VX_BUNDLE_HOST);
  }

 private:
  files::path folder_ = files::temp_directory_path() / ("vxfoundation-bundle-" + std::to_string(getpid()));
};

}  // namespace

TEST(NSBundle, EveryLanguageHasEveryKeyWhichIsTheEnglishText) {
  NSRefPtr<NSDictionary> english;
  for (const std::string language : {"en", "de", "fr", "es", "ja", "zh_CN"}) {
    const auto file = resources / (language + ".lproj") / "Localizable.strings";
    const auto texts = NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(file.string()));
    ASSERT_TRUE(texts) << language;
    EXPECT_EQ(texts->count(), 5U) << language;
    if (!english) english = texts;
    for (const NSRef<NSObject> key : *english) {
      const NSRefPtr<NSObject> translation = texts->objectForKey(key);
      ASSERT_TRUE(translation) << language << *key->description();
      EXPECT_EQ(translation->isEqual(key), texts == english) << language << *key->description();
    }
  }
}

TEST(NSBundle, ACopyOfTheLibraryAnswersFromItsOwnResources) {
  for (const auto& row : byteVectors("moved-libraries.tsv")) {
    MovedLibrary library;
    if (!row[0].empty()) library.replace(row[0], row[1]);
    EXPECT_EQ(library.cancel(row[2]), row[3]) << testing::PrintToString(row);
  }
}

TEST(NSBundle, AnswerForWhatIsNotThere) {
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.vxfoundation.nobody"));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(nullptr));
  EXPECT_FALSE(NSBundle::bundleWithPath("/nowhere"));
}

TEST(NSBundle, TranslateAsTheTableSays) {
  setenv("LC_ALL", "en_GB.UTF-8", 1);
  setenv("LANGUAGE", "de", 1);
  const auto bundle = NSBundle::bundleWithIdentifier("org.vxfoundation.VXFoundation");
  ASSERT_TRUE(bundle);
  const auto cell = [](const std::string& said) {
    return said == "-" ? nullptr : NSRefPtr<NSString>(text(said));
  };
  for (const auto& row : vectors("localized-strings.tsv"))
    EXPECT_EQ(bytesOf(bundle->localizedStringForKey(cell(row[0]), cell(row[1]), cell(row[2]))), row[3])
        << testing::PrintToString(row);
}
