#include <VXFoundation/NSString+CXKeyValueCoding.h>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

using CXKeyValueCoding::stringByAppendingKeyPath;
using CXKeyValueCoding::stringWithKeyPathComponents;

TEST(CXKeyValueCoding, ComponentsAreJoinedUpToTheFirstNil) {
  const NSRefPtr<NSString> nil;
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({})), std::nullopt);
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({nil, "a"})), std::nullopt);
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({"a"})), "a");
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({"", nil})), "") << "empty is not nil";
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({"a", "b", "c", nil, "d"})), "a.b.c");
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({"a", "", "b.c", "\xC3\xA9"})), "a..b.c.\xC3\xA9");
  EXPECT_EQ(bytesOf(stringWithKeyPathComponents({"a", number(-7)})), "a.-7");
}

TEST(CXKeyValueCoding, KeyPathsAreAppendedUnchanged) {
  const std::vector<std::vector<std::string>> rows = {
      {"a", "b", "a.b"}, {"", "b", ".b"}, {"a", "", "a."}, {"a", "b.c", "a.b.c"}, {"%@", "%d", "%@.%d"}};
  for (const auto& row : rows)
    EXPECT_EQ(bytesOf(stringByAppendingKeyPath(*text(row[0]), text(row[1]))), row[2]);
  EXPECT_EQ(bytesOf(stringByAppendingKeyPath(*text("a"), nullptr)), "a.(null)");
}
