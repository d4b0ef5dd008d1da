#include <VXFoundation/VXKeychainErrorExplanation.h>
#include <VXFoundation/VXKeychainItem.h>

#include "tests/support/KeychainSupport.h"

namespace {

using Sentences = std::pair<std::string, std::string>;

Sentences explained(const NSRefPtr<NSError>& error) {
  const auto explanation = VXKeychainErrorExplanation(error);
  if (!explanation) return {"-", "-"};
  return {shown(explanation->whatHappened), shown(explanation->whatToDo)};
}

class VXKeychainErrorExplanationTest : public KeychainTest {};

}  // namespace

TEST_F(VXKeychainErrorExplanationTest, ItemsAndStatusesAreExplainedInTheLanguageOfTheUser) {
  for (const auto& row : vectors("keychain-explanations.tsv")) {
    SCOPED_TRACE(row[0]);
    const OSStatus status = std::stoi(row[0]);
    returnAlways(status);
    const auto item = VXGenericKeychainItem::keychainItemWithUsername("ann", "secret", nullptr, "mail");
    NSRefPtr<NSError> error;
    ASSERT_FALSE(item->addItemToKeychain(&error));
    const Sentences expected(row[1], row[2]);
    EXPECT_EQ(explained(error), expected);
    EXPECT_EQ(explained(NSError::errorWithDomain(NSOSStatusErrorDomain, status, nullptr)), expected);
    EXPECT_EQ(explained(NSError::errorWithDomain("host", status, nullptr)), Sentences("-", "-"));
    if (row[1] == "-") continue;
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const Sentences german = explained(error);
    setenv("LC_ALL", "C", 1);
    EXPECT_TRUE(german.first != expected.first && german.second != expected.second) << german.first;
  }
  EXPECT_FALSE(VXKeychainErrorExplanation(nullptr));
}
