#include <Security/SecItem.h>

#include <utility>
#include <vector>

#include <Foundation/NSArray.h>
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

/// An array of what the request asks to be returned of each entry; nil when it asks for nothing.
NSRefPtr<NSArray> makeResponses(const SecItemRequest& request, const std::vector<SecEntry>& entries) {
  const NSRef<NSMutableArray> responses = NSMutableArray::arrayWithCapacity(entries.size());
  for (const SecEntry& entry : entries) {
    const auto response = secMakeResponse(request, entry);
    if (!response) return nullptr;
    responses->addObject(response);
  }
  return responses;
}

template <class Kind>
void deliver(NSRefPtr<Kind> response, NSRefPtr<NSObject>* result) {
  if (response && result) *result = std::move(response);
}

}  // namespace

OSStatus SecItemAdd(const NSRefPtr<NSDictionary>& attributes, NSRefPtr<NSObject>* result) {
  return secStatusOf([&] {
    SecItemRequest request = secReadRequest(attributes, SecRequestKind::change);
    const SecEntry entry{std::move(request.attributes), std::move(request.secret).value_or(SecSecret())};
    request.returnData = false;
    // Made before anything is changed, so that a failure to make it changes nothing.
    auto response = secMakeResponse(request, entry);
    transactOnDefault(SecStorage::Access::change,
                      [&](SecTransaction& transaction) { secAdd(transaction, entry); });
    deliver(std::move(response), result);
  });
}

OSStatus SecItemCopyMatching(const NSRefPtr<NSDictionary>& query, NSRefPtr<NSObject>* result) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query, SecRequestKind::search);
    const SecSecrets secrets = request.returnData ? SecSecrets::read : SecSecrets::skip;
    std::vector<SecEntry> found;
    transactOnDefault(SecStorage::Access::read, [&](SecTransaction& transaction) {
      found = secCopyMatching(transaction, request.query(), secrets, request.limit.value_or(1));
    });
    if (request.limit)
      deliver(makeResponses(request, found), result);
    else
      deliver(secMakeResponse(request, found.front()), result);
  });
}

OSStatus SecItemUpdate(const NSRefPtr<NSDictionary>& query,
                       const NSRefPtr<NSDictionary>& attributesToUpdate) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query, SecRequestKind::select);
    SecItemRequest change =
        secReadRequest(attributesToUpdate, SecRequestKind::change, request.attributes.itemClass);
    const SecChanges changes{std::move(change.attributes), std::move(change.secret)};
    transactOnDefault(SecStorage::Access::change,
                      [&](SecTransaction& transaction) { secUpdate(transaction, request.query(), changes); });
  });
}

OSStatus SecItemDelete(const NSRefPtr<NSDictionary>& query) {
  return secStatusOf([&] {
    const SecItemRequest request = secReadRequest(query, SecRequestKind::select);
    transactOnDefault(SecStorage::Access::change,
                      [&](SecTransaction& transaction) { secDelete(transaction, request.query()); });
  });
}

NSRef<NSString> SecCopyErrorMessageString(OSStatus status, void*) {
  return NSString::stringWithUTF8String(secStatusMessage(status));
}
