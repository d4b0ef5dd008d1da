#include "examples/window/Passwords.h"

#include <VXFoundation/VXQt.h>

#include <algorithm>

namespace {

using Passwords::Item;

VXGenericKeychainItem* asGeneric(const VXPasswordKeychainItem& item) {
  return NSDynamicCast<VXGenericKeychainItem>(NSRefPtr(const_cast<VXPasswordKeychainItem*>(&item))).get();
}

NSRefPtr<VXGenericKeychainItem> itemOf(const Entry& entry) {
  return VXGenericKeychainItem::keychainItemWithUsername(
      VXQt::string(entry.account), VXQt::string(entry.password), VXQt::string(entry.label),
      VXQt::string(entry.place));
}

/// Sets the fields, of which an empty password leaves the stored one as it is.
void fill(VXPasswordKeychainItem& item, const Entry& entry) {
  item.setUsername(VXQt::string(entry.account));
  item.setLabel(VXQt::string(entry.label));
  if (!entry.password.isEmpty()) item.setPassword(VXQt::string(entry.password));
  if (VXGenericKeychainItem* generic = asGeneric(item)) generic->setServiceName(VXQt::string(entry.place));
}

NSRef<VXGenericKeychainItem> finderOf(const Entry& entry) {
  return VXGenericKeychainItem::findKeychainItemForUsername(VXQt::string(entry.account),
                                                            VXQt::string(entry.place));
}

bool isBefore(const Item& a, const Item& b) {
  const Entry first = Passwords::entryOf(*a), second = Passwords::entryOf(*b);
  const int order = QString::localeAwareCompare(first.label, second.label);
  return order != 0 ? order < 0 : first.account < second.account;
}

}  // namespace

NSRefPtr<NSError> Passwords::list(std::vector<Item>& items) {
  NSRefPtr<NSError> error;
  for (const auto& found :
       {VXGenericKeychainItem::findAllKeychainItemsForUsername(nullptr, nullptr, false, &error),
        VXInternetKeychainItem::findAllKeychainItemsForUsername(
            nullptr, nullptr, nullptr, 0, VXInternetKeychainItemProtocolNone, false, &error)}) {
    if (!found) return error;
    for (const NSRef<NSObject> each : *found) items.push_back(NSDynamicCast<VXPasswordKeychainItem>(each));
  }
  std::sort(items.begin(), items.end(), isBefore);
  return nullptr;
}

NSRefPtr<NSError> Passwords::add(const Entry& entry) {
  NSRefPtr<NSError> error;
  return itemOf(entry)->addItemToKeychain(&error) ? nullptr : error;
}

NSRefPtr<NSError> Passwords::replace(const Entry& entry) {
  NSRefPtr<NSError> error;
  const auto present = finderOf(entry);
  if (!present->refreshItemFromKeychainIncludePassword(false, &error)) return error;
  fill(*present, entry);
  return present->updateAndFollow(&error) ? nullptr : error;
}

NSRefPtr<NSError> Passwords::change(const Item& item, const Entry& entry) {
  NSRefPtr<NSError> error;
  fill(*item, entry);
  return item->updateAndFollow(&error) ? nullptr : error;
}

NSRefPtr<NSError> Passwords::changeInPlaceOfOther(const Item& item, const Entry& entry) {
  NSRefPtr<NSError> error;
  const auto other = finderOf(entry);
  if (!other->refreshItemFromKeychainIncludePassword(false, &error)) return error;
  if (!other->deleteFoundItem(&error)) return error;
  return change(item, entry);
}

NSRefPtr<NSError> Passwords::remove(const Item& item) {
  NSRefPtr<NSError> error;
  return item->deleteFoundItem(&error) ? nullptr : error;
}

NSRefPtr<NSError> Passwords::read(const Item& item, QString& password) {
  NSRefPtr<NSError> error;
  if (!item->refreshItemFromKeychainIncludePassword(true, &error)) return error;
  password = VXQt::qString(item->password());
  item->setData(nullptr);  // the window keeps no passwords in its list
  return nullptr;
}

Entry Passwords::entryOf(const VXPasswordKeychainItem& item) {
  Entry entry{VXQt::qString(item.label()), VXQt::qString(item.username()), {}, {}};
  if (const VXGenericKeychainItem* generic = asGeneric(item))
    entry.place = VXQt::qString(generic->serviceName());
  else if (const auto* internet = dynamic_cast<const VXInternetKeychainItem*>(&item))
    entry.place = VXQt::qString(internet->server()) + VXQt::qString(internet->path());
  return entry;
}

bool Passwords::isForService(const VXPasswordKeychainItem& item) { return asGeneric(item) != nullptr; }
