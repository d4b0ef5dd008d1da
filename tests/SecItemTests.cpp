#include "SecStorageConformance.h"

#include <Security/SecMemoryStorage.h>

TEST(SecMemoryStorage, Conforms) {
  SecStorageConformance::expect([] { return std::make_shared<SecMemoryStorage>(); });
}
