#include <Security/SecItem.h>

#include <new>
#include <utility>

#include <Security/SecDefaultStorage.h>
#include <Security/SecItemRequest.h>
#include <Security/SecMeaning.h>
#include <Security/SecStatus.h>

namespace {

OSStatus transactOnDefault(SecStorage::Access access, const SecStorage::Work& work) {
  std::shared_ptr<SecStorage> storage;
  const OSStatus status = secCopyDefaultStorage(storage);
  return status == errSecSuccess ? storage->transact(access, work) : status;
}

template <class Operation>
OSStatus guardAllocation(Operation&& operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return errSecAllocate;
  }
}

void deliver(RefPtr<NSDictionary> response, RefPtr<NSDictionary>* result) {
  if (response && result) *result = std::move(response);
}

OSStatus add(const RefPtr<NSDictionary>& attributes, RefPtr<NSDictionary>* result) {
  auto request = secReadRequest(attributes);
  if (!request) return errSecParam;
  const SecEntry entry{std::move(request->attributes), std::move(request->secret).value_or(SecSecret())};
  // Made before anything is changed, so that a failure to make it changes nothing.
  auto response = secMakeResponse(entry, request->returnAttributes, false);
  const OSStatus status = transactOnDefault(
      SecStorage::Access::change, [&](SecTransaction& transaction) { return secAdd(transaction, entry); });
  if (status == errSecSuccess) deliver(std::move(response), result);
  return status;
}

OSStatus copyMatching(const RefPtr<NSDictionary>& query, RefPtr<NSDictionary>* result) {
  const auto request = secReadRequest(query);
  if (!request) return errSecParam;
  SecEntry found;
  const OSStatus status = transactOnDefault(SecStorage::Access::read, [&](SecTransaction& transaction) {
    return secCopyMatching(transaction, request->attributes, found);
  });
  if (status == errSecSuccess)
    deliver(secMakeResponse(found, request->returnAttributes, request->returnData), result);
  return status;
}

OSStatus update(const RefPtr<NSDictionary>& query, const RefPtr<NSDictionary>& attributesToUpdate) {
  const auto request = secReadRequest(query);
  if (!request) return errSecParam;
  auto change = secReadRequest(attributesToUpdate, request->attributes.itemClass);
  if (!change) return errSecParam;
  const SecChanges changes{std::move(change->attributes), std::move(change->secret)};
  return transactOnDefault(SecStorage::Access::change, [&](SecTransaction& transaction) {
    return secUpdate(transaction, request->attributes, changes);
  });
}

OSStatus remove(const RefPtr<NSDictionary>& query) {
  const auto request = secReadRequest(query);
  if (!request) return errSecParam;
  return transactOnDefault(SecStorage::Access::change, [&](SecTransaction& transaction) {
    return secDelete(transaction, request->attributes);
  });
}

}  // namespace

OSStatus SecItemAdd(const RefPtr<NSDictionary>& attributes, RefPtr<NSDictionary>* result) {
  return guardAllocation([&] { return add(attributes, result); });
}

OSStatus SecItemCopyMatching(const RefPtr<NSDictionary>& query, RefPtr<NSDictionary>* result) {
  return guardAllocation([&] { return copyMatching(query, result); });
}

OSStatus SecItemUpdate(const RefPtr<NSDictionary>& query, const RefPtr<NSDictionary>& attributesToUpdate) {
  return guardAllocation([&] { return update(query, attributesToUpdate); });
}

OSStatus SecItemDelete(const RefPtr<NSDictionary>& query) {
  return guardAllocation([&] { return remove(query); });
}

Ref<NSString> SecCopyErrorMessageString(OSStatus status, void*) {
  return NSString::stringWithUTF8String(secStatusMessage(status));
}
