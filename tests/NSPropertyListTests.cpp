#include <Foundation/NSPropertyList.h>

#include "tests/support/Bytes.h"
#include "tests/support/Vectors.h"

namespace {

NSRefPtr<NSObject> propertyList(std::string_view body) {
  const std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\">" + std::string(body) + "</plist>";
  return NSPropertyListWithData(std::as_bytes(std::span(xml)));
}

}  // namespace

TEST(NSPropertyList, ValuesMatchTheTableAndNoTwoAreEqual) {
  const auto rows = byteVectors("property-lists.tsv");
  for (const auto& row : rows)
    for (const auto& other : rows) {
      const NSRefPtr<NSObject> value = propertyList(row[0]), another = propertyList(other[0]);
      ASSERT_TRUE(value && another) << row[0] << other[0];
      EXPECT_EQ(bytesOf(value->description()), row[1]) << row[0];
      EXPECT_EQ(value->isEqual(another), &row == &other) << row[0] << other[0];
    }
}

TEST(NSPropertyList, MalformedListsAreNil) {
  for (const auto& row : vectors("not-property-lists.tsv")) EXPECT_FALSE(propertyList(row[0])) << row[0];
  std::string deep;
  for (int i = 0; i < 200; ++i) deep = "<array>" + deep + "</array>";
  EXPECT_FALSE(propertyList(deep));
  for (const auto& row : vectors("property-list-prologues.tsv"))
    EXPECT_EQ(bool(NSPropertyListWithData(std::as_bytes(std::span(row[0])))), row[1] == "read") << row[0];
  EXPECT_FALSE(NSPropertyListWithContentsOfFile("/nowhere/Info.plist"));
  EXPECT_FALSE(NSPropertyListWithContentsOfFile("/"));
}
