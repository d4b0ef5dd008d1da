#include "Support.h"

using CXKeyValueCoding::stringByAppendingKeyPath;
using CXKeyValueCoding::stringWithKeyPathComponents;

namespace {

std::string shown(const RefPtr<NSString>& path) {
  return path ? static_cast<std::string>(*path) : "absent";
}

}  // namespace

TEST(CXKeyValueCoding, ComponentsAreJoinedUpToTheFirstNil) {
  const RefPtr<NSString> nil;
  EXPECT_EQ(shown(stringWithKeyPathComponents({})), "absent");
  EXPECT_EQ(shown(stringWithKeyPathComponents({nil, "a"})), "absent");
  EXPECT_EQ(shown(stringWithKeyPathComponents({"a"})), "a");
  EXPECT_EQ(shown(stringWithKeyPathComponents({"", nil})), "") << "empty is not absent";
  EXPECT_EQ(shown(stringWithKeyPathComponents({"a", "b", "c", nil, "d"})), "a.b.c");
  EXPECT_EQ(shown(stringWithKeyPathComponents({"a", "", "b.c", "\xC3\xA9"})), "a..b.c.\xC3\xA9");
  EXPECT_EQ(shown(stringWithKeyPathComponents({"a", NSNumber::numberWithInteger(-7)})), "a.-7");
}

TEST(CXKeyValueCoding, AKeyPathIsAppendedAsItIs) {
  const std::vector<std::vector<std::string>> rows = {
      {"a", "b", "a.b"}, {"", "b", ".b"}, {"a", "", "a."}, {"a", "b.c", "a.b.c"}, {"%@", "%d", "%@.%d"}};
  for (const auto& row : rows)
    EXPECT_EQ(shown(stringByAppendingKeyPath(*text(row[0]), text(row[1]))), row[2]);
  EXPECT_EQ(shown(stringByAppendingKeyPath(*text("a"), nullptr)), "a.(null)");
}
