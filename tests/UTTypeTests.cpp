#include <CoreServices/UTType.h>

#include <atomic>
#include <thread>

#include "tests/support/Files.h"
#include "tests/support/Support.h"
#include "tests/support/Vectors.h"

namespace {

bool conforms(std::string_view type, std::string_view other) {
  return UTTypeConformsTo(text(type), text(other));
}

std::string declaration(const std::string& type, const std::string& other) {
  return "<dict><key>UTTypeIdentifier</key><string>" + type +
         "</string><key>UTTypeConformsTo</key><array><string>" + other + "</string></array></dict>";
}

// Returns the code of the error with which an information file with these types is refused, or 0.
std::int64_t declare(const std::string& exported) {
  const TemporaryFolder folder;
  const std::string path = folder.root / "Info.plist";
  writeFile(path, "<plist><dict><key>UTExportedTypeDeclarations</key>" + exported + "</dict></plist>");
  NSRefPtr<NSError> error;
  const bool done = UTTypeDeclareTypesInFile(text(path), &error);
  EXPECT_NE(done, bool(error));
  return error ? error->code() : 0;
}

std::int64_t declare(const std::string& type, const std::string& other) {
  return declare("<array>" + declaration(type, other) + "</array>");
}

std::int64_t declareChain(const std::string& prefix, int length) {
  std::string list;
  for (int i = 0; i < length; ++i)
    list += declaration(prefix + std::to_string(i), prefix + std::to_string(i + 1));
  return declare("<array>" + list + declaration(prefix + std::to_string(length), "public.data") + "</array>");
}

}  // namespace

TEST(UTType, HostsDeclareTheirOwnTypes) {
  for (const auto& row : vectors("host-declarations.tsv")) {
    const bool asks = row.at(0) == "?";
    EXPECT_EQ(asks ? conforms(row.at(1), row.at(2)) : declare(row.at(1), row.at(2)), std::stoi(row.at(3)))
        << testing::PrintToString(row);
  }
}

TEST(UTType, RefusedDeclarationsChangeNothing) {
  for (const auto& row : vectors("refused-declarations.tsv")) {
    EXPECT_EQ(declare(row.at(1)), std::stoi(row.at(0))) << row[1];
    EXPECT_FALSE(conforms("org.example.good", "public.png")) << row[1];
  }
  NSRefPtr<NSError> error;
  for (const NSStringArg path : {NSStringArg("/nonexistent"), NSStringArg("/"), NSStringArg(nullptr)}) {
    EXPECT_FALSE(UTTypeDeclareTypesInFile(path) || UTTypeDeclareTypesInFile(path, &error));
    EXPECT_EQ(error->code(), UTTypeErrorUnreadable);
  }
}

TEST(UTType, QueriesRunConcurrentlyWithDeclarations) {
  std::atomic<bool> done = false;
  std::thread asking([&] {
    while (!done) EXPECT_TRUE(conforms("public.png", "public.item"));
  });
  for (char last = 'a'; last <= 'z'; ++last)
    EXPECT_EQ(declare(std::string("org.example.") + last, "public.png"), 0);
  done = true;
  asking.join();
  EXPECT_TRUE(conforms("org.example.z", "public.image"));
}

TEST(UTType, LongChainsAreDeclaredOrRefused) {
  EXPECT_EQ(declareChain("org.example.short", 400), 0);
  EXPECT_TRUE(conforms("org.example.short0", "public.item"));
  EXPECT_EQ(declareChain("org.example.long", 50000), UTTypeErrorTooMany);
  EXPECT_FALSE(conforms("org.example.long0", "org.example.long1"));
}
