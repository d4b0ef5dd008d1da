#pragma once

#include <optional>
#include <string>

#include <Security/DesktopStore/SecDesktopText.h>
#include <Security/SecStorage.h>

/// The attributes of an entry, and the time of its creation in microseconds, in 16 digits, which gives items
/// their order.
struct SecDesktopEntry {
  SecAttributes attributes;
  std::string order;
};

/// Returns what an item says of the entry. Fails with errSecParam for a value that cannot be an attribute
/// (secEncodeText), and with errSecDataTooLarge for more than 16 MiB of attributes.
SecDesktopProperties secEncodeProperties(const SecDesktopEntry& entry);

/// Returns the entry that an item describes; no value for an item that does not bear our marks. Fails with
/// errSecDecode if the attributes contradict each other, as after a change by another program.
std::optional<SecDesktopEntry> secDecodeProperties(const SecDesktopProperties& properties);

/// Returns attributes that every item which matches the query has, and few others: only our own items have
/// them, and a query for one identity asks for its digest alone. Fails as secEncodeProperties does.
SecDesktopAttributes secSearchAttributes(const SecQuery& query);

/// Returns attributes that all our items have.
SecDesktopAttributes secSearchAttributes();

/// Returns the present time as an order, later than every other that this process has used.
std::string secNextOrder();
