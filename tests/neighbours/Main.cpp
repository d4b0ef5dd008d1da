#include <cstdio>

bool constantsAreThere();
bool formerNamesAreTheHosts();
bool worksAfterOthers();
bool worksBeforeOthers();

int main() {
  const struct {
    const char* what;
    bool holds;
  } checks[] = {
      {"every constant is there", constantsAreThere()},
      {"the host's classes are its own", formerNamesAreTheHosts()},
      {"the library works behind other headers", worksAfterOthers()},
      {"the library works in front of other headers", worksBeforeOthers()},
  };
  int failures = 0;
  for (const auto& check : checks)
    if (!check.holds) std::printf("does not hold: %s\n", check.what), ++failures;
  return failures;
}
