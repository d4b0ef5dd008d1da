#include <sys/stat.h>

#include <Foundation/NSBundle.h>
#include <Foundation/NSPropertyList.h>

#include <chrono>
#include <thread>

#include "tests/support/Bytes.h"
#include "tests/support/Command.h"
#include "tests/support/Files.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

namespace files = std::filesystem;

namespace {

const files::path resources = files::path(VX_LIBRARY).parent_path() / "Resources";

// A copy of the library and of a host, each with its resources, and a folder full of planted ones.
class Installation {
 public:
  Installation() {
    for (const char* folder : {"lib", "planted/lib"}) {
      files::create_directories(root() / folder);
      files::copy_file(VX_LIBRARY, root() / folder / "libVXFoundation.so.1");
    }
    files::copy(resources, root() / "lib/Resources", files::copy_options::recursive);
    for (const char* folder : {"app", "planted", "planted/app"}) {
      files::create_directories(root() / folder / "Resources");
      files::copy_file(VX_BUNDLE_HOST, root() / folder / "host");
    }
    writeFile(root() / "app/Resources/Info.plist", information("org.example.app", "org.example.own"));
    for (const char* folder : {"planted", "planted/lib", "planted/app"}) {
      files::create_directories(root() / folder / "Resources/de.lproj");
      writeFile(root() / folder / "Resources/Info.plist",
                information("org.vxfoundation.VXFoundation", "org.example.planted"));
      writeFile(root() / folder / "Resources/de.lproj/Localizable.strings",
                "<plist><dict><key>Cancel</key><string>planted</string></dict></plist>");
    }
  }

  // Replaces the content of a file, or removes the file if the content is "-"; "|" makes a pipe of it.
  void replace(const files::path& name, const std::string& content) const {
    const files::path file = root() / name;
    files::remove_all(file);
    files::create_directories(file.parent_path());
    if (content == "|")
      mkfifo(file.c_str(), 0600);
    else if (content != "-")
      writeFile(file, content);
  }

  // What the host prints.
  std::string run(const std::string& folder, const std::string& library, const std::string& language,
                  const std::string& arguments) const {
    return outputOf("root=" + root().string() + " && cd $root/" + folder +
                    " && env -u LC_ALL -u LC_MESSAGES LANG=en_GB.UTF-8 LANGUAGE=" + language +
                    " LD_LIBRARY_PATH=" + library + " timeout 20 " VX_EMULATOR " $root/app/host " +
                    arguments);
  }

 private:
  const files::path& root() const { return folder_.root; }

  static std::string information(const std::string& identifier, const std::string& type) {
    return "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
           "</string><key>UTExportedTypeDeclarations</key><array><dict><key>UTTypeIdentifier</key><string>" +
           type +
           "</string><key>UTTypeConformsTo</key><string>public.data</string></dict></array></dict></plist>";
  }

  TemporaryFolder folder_;
};

}  // namespace

TEST(NSBundle, EveryLanguageTranslatesEveryEnglishString) {
  for (const auto& [table, count] : {std::pair("Localizable.strings", 5U), {"Recovery.strings", 21U}}) {
    NSRefPtr<NSDictionary> english;
    for (const std::string language : {"en", "de", "fr", "es", "ja", "zh_CN"}) {
      const auto file = resources / (language + ".lproj") / table;
      const auto strings = NSDynamicCast<NSDictionary>(NSPropertyListWithContentsOfFile(file.string()));
      ASSERT_TRUE(strings) << file;
      EXPECT_EQ(strings->count(), count) << file;
      if (!english) english = strings;
      for (const NSRef<NSObject> key : *english) {
        const NSRefPtr<NSObject> translation = strings->objectForKey(key);
        ASSERT_TRUE(translation) << file << *key->description();
        EXPECT_EQ(translation->isEqual(key), strings == english) << file << *key->description();
      }
    }
  }
}

TEST(NSBundle, HostsFindWhatTheTableSays) {
  for (const auto& row : byteVectors("bundle-hosts.tsv")) {
    const Installation installation;
    if (row[0] != "-") installation.replace(row[0], row[1]);
    EXPECT_EQ(installation.run(row[2], row[3], row[4], row[5]), row[6]) << testing::PrintToString(row);
  }
}

TEST(NSBundle, TheRegisteredInformationEqualsTheFiles) {
  const Installation installation;
  const std::string ofFile = installation.run("app", "$root/lib", "de", "information");
  installation.replace("lib/Resources", "-");
  EXPECT_EQ(installation.run("app", "$root/lib", "de", "information"), ofFile);
  EXPECT_NE(ofFile.find("CFBundleIdentifier = org.vxfoundation.VXFoundation"), std::string::npos) << ofFile;
}

TEST(NSBundle, MissingBundlesAreNil) {
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.vxfoundation.nobody"));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(nullptr));
  EXPECT_FALSE(NSBundle::bundleWithPath("/nowhere"));
  EXPECT_FALSE(NSBundle::bundleWithPath(""));
}

TEST(NSBundle, TranslatesAsTheTableSays) {
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

TEST(NSBundle, AFileThatHasChangedIsReadAgain) {
  const TemporaryFolder folder;
  const files::path file = folder.root / "Resources/Info.plist";
  files::create_directory(file.parent_path());
  const auto write = [&](const std::string& identifier) {
    writeFile(file,
              "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier + "</string></dict></plist>");
  };
  write("one");
  const NSRefPtr<NSBundle> bundle = NSBundle::bundleWithPath(folder.root.string());
  EXPECT_EQ(bytesOf(bundle->bundleIdentifier()), "one");
  write("two");
  EXPECT_EQ(bytesOf(bundle->bundleIdentifier()), "two") << "a new file may change within a tick of its time";
  std::this_thread::sleep_for(std::chrono::milliseconds(3500));
  EXPECT_EQ(bytesOf(bundle->bundleIdentifier()), "two");
  EXPECT_EQ(bundle->infoDictionary(), bundle->infoDictionary()) << "what was read is kept";
  write("six");
  EXPECT_EQ(bytesOf(bundle->bundleIdentifier()), "six");
  files::remove(file);
  EXPECT_FALSE(bundle->bundleIdentifier());
}
