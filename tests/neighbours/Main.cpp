bool constantsAreThere();
bool formerNamesAreTheHosts();
bool worksAfterOthers();
bool worksBeforeOthers();

/// Returns the number of the first check that fails, or 0.
int main() {
  bool (*const checks[])() = {constantsAreThere, formerNamesAreTheHosts, worksAfterOthers, worksBeforeOthers};
  int number = 0;
  for (const auto check : checks)
    if (++number; !check()) return number;
  return 0;
}
