#include <Security/SecItem.h>

#include <utility>

#include <Security/Items/SecItemOperations.h>
#include <Security/Items/SecItemRequest.h>
#include <Security/SecDefaultStorage.h>
#include <Security/SecFailure.h>

namespace {

void transactOnDefault(SecStorage::Access access, const SecStorage::Work& work) {
  std::shared_ptr<SecStorage> storage;
  secCheck(secCopyDefaultStorage(storage));
  secCheck(storage->transact(access, work));
}

void deliver(NSRefPtr<NSDictionary> response, NSRefPtr<NSDictionary>* result) {
  if (response && result) *result = std::move(response);
}

}  // namespace

OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes, NSRefPtr<NSDictionary>* result) {
  return secStatusOf([&] {
    SecItemRequest request = secReadRequest(attributes);
    const SecEntry entry{std::move(request.attributes), std::move(request.secret).value_or(SecSecret())};
    // Made before anything is changed, so that a failure to make it changes nothing.
    auto response = secMakeResponse(entry, request.returnAttributes, false);
    transactOnDefault(SecStorage::Access::change,
                      [&](SecTransaction& transaction) { secAdd(transaction, entry); });
    deliver(std::move(response), result);
  });
}

OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query, NSRefPtr<NSDictionary>* result) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query);
    SecEntry found;
    transactOnDefault(SecStorage::Access::read, [&](SecTransaction& transaction) {
      found = secCopyMatching(transaction, request.attributes);
    });
    deliver(secMakeResponse(found, request.returnAttributes, request.returnData), result);
  });
}

OSStatus SecItemUpdate(const NSRefPtr<NSDictionary>& query,
                       const NSRefPtr<NSDictionary>& attributesToUpdate) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query);
    SecItemRequest change = secReadRequest(attributesToUpdate, request.attributes.itemClass);
    const SecChanges changes{std::move(change.attributes), std::move(change.secret)};
    transactOnDefault(SecStorage::Access::change, [&](SecTransaction& transaction) {
      secUpdate(transaction, request.attributes, changes);
    });
  });
}

OSStatus SecItemDelete(const NSRefPtr<NSDictionary>& query) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query);
    transactOnDefault(SecStorage::Access::change,
                      [&](SecTransaction& transaction) { secDelete(transaction, request.attributes); });
  });
}

NSRef<NSString> SecCopyErrorMessageString(OSStatus status, void*) {
  return NSString::stringWithUTF8String(secStatusMessage(status));
}
