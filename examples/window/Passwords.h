#pragma once

#include <VXFoundation/VXFoundation.h>

#include <memory>
#include <vector>

#include "examples/window/EntryDialog.h"

/// The calls of the store that the window makes, each on the thread for calls that may wait. They return nil
/// on success.
namespace Passwords {

using Item = NSRef<VXPasswordKeychainItem>;

/// Sets `items` to all items of the store, without their passwords, in the order of their labels and
/// accounts.
NSRefPtr<NSError> list(std::vector<Item>& items);
NSRefPtr<NSError> add(const Entry& entry);
/// Adds an entry in place of the one with the same account and service.
NSRefPtr<NSError> replace(const Entry& entry);
NSRefPtr<NSError> change(const Item& item, const Entry& entry);
/// Changes an item of a service that becomes the same as another one, which is deleted.
NSRefPtr<NSError> changeInPlaceOfOther(const Item& item, const Entry& entry);
NSRefPtr<NSError> remove(const Item& item);
/// Sets `password` to the item's password.
NSRefPtr<NSError> read(const Item& item, QString& password);

/// Returns what the window shows of an item, without its password. Accesses no store.
Entry entryOf(const VXPasswordKeychainItem& item);
/// Returns whether the item is for a service, not for a server.
bool isForService(const VXPasswordKeychainItem& item);

}  // namespace Passwords
