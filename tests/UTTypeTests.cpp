#include <CoreServices/UTType.h>

#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "Support.h"

namespace {

struct BuiltInType {
  std::string identifier;
  std::vector<std::string> conformsTo;
};

const std::vector<BuiltInType> builtInTypes = {
#include <CoreServices/UTBuiltInTypes.inc>
};

bool conforms(std::string_view type, std::string_view other) {
  return UTTypeConformsTo(text(type), text(other));
}

std::vector<std::string> split(const std::string& joined, char mark) {
  std::vector<std::string> pieces;
  std::istringstream stream(joined);
  for (std::string piece; std::getline(stream, piece, mark);) pieces.push_back(piece);
  return pieces;
}

std::string element(const std::string& name, const std::string& content) {
  return "<" + name + ">" + content + "</" + name + ">";
}

// "type>other,other" as a declaration.
std::string declaration(const std::string& told) {
  if (told == "!") return element("string", told);
  const std::size_t mark = told.find('>');
  std::string list, id = told.substr(0, mark);
  for (const std::string& each : split(told.substr(mark + 1), ','))
    list += element("string", each == "-" ? "" : each);
  return element("dict", (id.empty() ? "" : element("key", "UTTypeIdentifier") + element("string", id)) +
                             element("key", "UTTypeConformsTo") + element("array", list));
}

// The code of the error with which an information file with this list is refused; 0 when it is not.
std::int64_t declareList(const std::string& list) {
  const auto path =
      std::filesystem::temp_directory_path() / ("vxfoundation-types-" + std::to_string(getpid()));
  std::ofstream(path) << "<?xml version=\"1.0\"?><plist version=\"1.0\">"
                      << element("dict", element("key", "UTExportedTypeDeclarations") + list) << "</plist>";
  RefPtr<NSError> error;
  const bool done = UTTypeDeclareTypesInFile(text(path.string()), &error);
  std::filesystem::remove(path);
  EXPECT_NE(done, bool(error));
  if (!error) return 0;
  EXPECT_TRUE(error->domain()->isEqual(UTTypeErrorDomain));
  return error->code();
}

std::int64_t declare(const std::string& told) {
  std::string list;
  for (const std::string& each : split(told, ' ')) list += declaration(each);
  return declareList(element("array", list));
}

}  // namespace

TEST(UTType, BuiltInTypesConformToDeclaredTypesAndInNoCycle) {
  std::set<std::string> before;
  // Each stands behind those that it conforms to: a cycle, or a type that is not there, cannot.
  for (const BuiltInType& type : builtInTypes) {
    for (const std::string& each : type.conformsTo)
      EXPECT_TRUE(before.contains(each)) << type.identifier << each;
    EXPECT_TRUE(before.insert(type.identifier).second) << type.identifier << " is there twice";
  }
}

TEST(UTType, ConformanceIsReachability) {
  std::map<std::string, std::set<std::string>> reached;
  for (const BuiltInType& type : builtInTypes) {
    reached[type.identifier] = {type.identifier};
    for (const std::string& each : type.conformsTo)
      reached[type.identifier].merge(std::set(reached.at(each)));
  }
  for (const auto& [type, supertypes] : reached)
    for (const BuiltInType& other : builtInTypes)
      ASSERT_EQ(conforms(type, other.identifier), supertypes.contains(other.identifier))
          << type << other.identifier;
}

TEST(UTType, HostsDeclareTypesOfTheirOwn) {
  EXPECT_FALSE(conforms("org.example.note", "public.text"));
  EXPECT_EQ(
      declare("org.example.note>public.plain-text,org.example.document org.example.folder>public.folder"), 0);
  EXPECT_TRUE(conforms("org.example.note", "public.text"));
  EXPECT_TRUE(conforms("org.example.note", "org.example.document")) << "which is not declared itself";
  EXPECT_EQ(declare("org.example.document>public.composite-content"), 0);
  EXPECT_TRUE(conforms("org.example.note", "public.composite-content"));
  EXPECT_TRUE(conforms("org.example.folder", "public.item"));
  EXPECT_EQ(declare("org.example.document>public.composite-content public.png>public.image"), 0)
      << "said again";
  EXPECT_EQ(declare("org.example.document>org.example.note"), UTTypeErrorContradiction);
  EXPECT_EQ(declareList(element("array",
                                "<dict><key>UTTypeIdentifier</key><string>org.example.one</string>"
                                "<key>UTTypeConformsTo</key><string>public.png</string></dict>")),
            0);
  EXPECT_TRUE(conforms("org.example.one", "public.image"));
}

TEST(UTType, RefusedDeclarationsChangeNothing) {
  const std::string good = "org.example.good>public.png ";
  for (const auto& row : vectors("refused-declarations.tsv")) {
    EXPECT_EQ(declare(good + row.at(1)), std::stoi(row.at(0))) << row[1];
    EXPECT_FALSE(conforms("org.example.good", "public.png")) << row[1];
  }
  EXPECT_EQ(declareList(element("string", "no list")), UTTypeErrorMalformed);
  RefPtr<NSError> error;
  for (const Text path : {Text("/nonexistent"), Text("/"), Text(nullptr)}) {
    EXPECT_FALSE(UTTypeDeclareTypesInFile(path, &error));
    EXPECT_EQ(error->code(), UTTypeErrorUnreadable);
  }
  EXPECT_FALSE(UTTypeDeclareTypesInFile(nullptr)) << "without a place for the error";
}

TEST(UTType, QueriesRunBesideDeclarations) {
  std::atomic<bool> done = false;
  std::thread asking([&] {
    while (!done) EXPECT_TRUE(conforms("public.png", "public.item"));
  });
  for (int i = 0; i < 20; ++i) EXPECT_EQ(declare("org.example.t" + std::to_string(i) + ">public.png"), 0);
  done = true;
  asking.join();
  EXPECT_TRUE(conforms("org.example.t19", "public.image"));
}

TEST(UTType, LongChainsAreDeclaredOrRefused) {
  const auto chain = [](const std::string& prefix, int length) {
    std::string told;
    for (int i = 0; i < length; ++i)
      told += prefix + std::to_string(i) + ">" +
              (i + 1 < length ? prefix + std::to_string(i + 1) : "public.data") + " ";
    return declare(told);
  };
  EXPECT_EQ(chain("org.example.short", 400), 0);
  EXPECT_TRUE(conforms("org.example.short0", "public.item"));
  EXPECT_EQ(chain("org.example.long", 50000), UTTypeErrorTooMany);
  EXPECT_FALSE(conforms("org.example.long49999", "public.data"));
}
