#include <Foundation/NSError.h>

#include "tests/support/Bytes.h"
#include "tests/support/Support.h"

TEST(NSError, NumbersAndErrorsAreEqualByValue) {
  EXPECT_TRUE(NSNumber::numberWithBool(true)->isEqual(number(1)));
  EXPECT_FALSE(number(1)->isBoolean());
  EXPECT_EQ(number(INT64_MIN)->integerValue(), INT64_MIN);
  const auto info = NSDictionary::dictionaryWithObject("what", NSLocalizedDescriptionKey);
  const auto growing = info->mutableCopy();
  const auto error = NSError::errorWithDomain("domain", -5, growing);
  growing->setObject("later", "key");
  EXPECT_TRUE(error->isEqual(NSError::errorWithDomain("domain", -5, info->mutableCopy())));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("domain", -5, nullptr)));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("domain", -6, info)));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("other", -5, info)));
  EXPECT_EQ(bytesOf(error->localizedDescription()), "what");
  EXPECT_EQ(bytesOf(NSError::errorWithDomain("d", 1, nullptr)->localizedDescription()), "error 1 of d");
  EXPECT_EQ(raised([] { NSError::errorWithDomain(nullptr, 1, nullptr); }), "NSInvalidArgumentException");
}
