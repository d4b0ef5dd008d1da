#include <Security/FileStore/SecFileKeys.h>

#include <utility>

SecFileKeys::SecFileKeys() : SecFileKeys(secRandomSecret(secKeySize), secRandomBytes<sizeof(SecTag)>()) {}

SecFileKeys::SecFileKeys(SecSecret dataKey, const SecTag& id)
    : id_(id),
      data_(std::move(dataKey)),
      derived_(secDeriveKey(data(), id, "VXFoundation keys", 4 * secKeySize)) {}
