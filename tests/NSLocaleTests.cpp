#include <Foundation/NSLocale.h>

#include <algorithm>

#include "tests/support/Vectors.h"

TEST(NSLocale, LanguagesFollowTheOrderOfGettext) {
  for (const auto& row : vectors("languages.tsv")) {
    const auto variable = [&](std::string_view name) {
      const std::vector<std::string_view> columns = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
      const auto& cell = row[std::size_t(std::find(columns.begin(), columns.end(), name) - columns.begin())];
      return cell == "-" ? nullptr : cell.c_str();
    };
    std::string names;
    for (const std::string& name : NSPreferredLanguages(variable))
      names.append(names.empty() ? "" : " ").append(name);
    EXPECT_EQ(names, row[4]) << testing::PrintToString(row);
  }
}
