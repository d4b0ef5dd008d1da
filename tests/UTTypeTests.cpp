#include <CoreServices/UTType.h>

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <set>
#include <thread>

#include "tests/support/Support.h"

namespace {

struct BuiltInType {
  std::string identifier;
  std::set<std::string> conformsTo;
};

const std::vector<BuiltInType> builtInTypes = {
#include <CoreServices/Internal/UTBuiltInTypes.inc>
};

bool conforms(std::string_view type, std::string_view other) {
  return UTTypeConformsTo(text(type), text(other));
}

std::string declaration(const std::string& type, const std::string& other) {
  return "<dict><key>UTTypeIdentifier</key><string>" + type +
         "</string><key>UTTypeConformsTo</key><array><string>" + other + "</string></array></dict>";
}

// The code of the error with which an information file with this is refused; 0 when it is not.
std::int64_t declare(const std::string& exported) {
  const auto path = std::filesystem::temp_directory_path() / ("vxfoundation-" + std::to_string(getpid()));
  std::ofstream(path) << "<plist version=\"1.0\"><dict><key>UTExportedTypeDeclarations</key>" << exported
                      << "</dict></plist>";
  NSRefPtr<NSError> error;
  const bool done = UTTypeDeclareTypesInFile(text(path.string()), &error);
  std::filesystem::remove(path);
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

TEST(UTType, BuiltInTypesConformToWhatTheTableReaches) {
  std::map<std::string, std::set<std::string>> reached;
  // Each stands behind those that it conforms to: neither a cycle nor a type that is not there can do that.
  for (const BuiltInType& type : builtInTypes) {
    auto& supertypes = reached[type.identifier];
    EXPECT_TRUE(supertypes.insert(type.identifier).second) << type.identifier << " is there twice";
    for (const std::string& each : type.conformsTo) {
      ASSERT_TRUE(reached.contains(each)) << type.identifier << " conforms to " << each;
      supertypes.merge(std::set(reached[each]));
    }
  }
  for (const auto& [type, supertypes] : reached)
    for (const BuiltInType& other : builtInTypes)
      ASSERT_EQ(conforms(type, other.identifier), supertypes.contains(other.identifier)) << type;
}

TEST(UTType, HostsDeclareTypesOfTheirOwn) {
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

TEST(UTType, QueriesRunBesideDeclarations) {
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
