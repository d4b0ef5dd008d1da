#include <Security/DesktopStore/SecDesktopEntryCoding.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <span>

#include <Security/DesktopStore/SecDesktopCrypto.h>
#include <Security/SecFailure.h>
#include <Security/SecIdentity.h>

// The names are kept in the desktop's stores and never change; docs/credential-store.md describes them.
namespace {

constexpr std::size_t largestTotal = std::size_t{16} << 20;
constexpr std::size_t largestAsked = 1000;
constexpr std::size_t orderDigits = 16;

constexpr char application[] = "VXFoundation";
constexpr char generic[] = "generic";
constexpr char internet[] = "internet";
constexpr char port[] = "port";
constexpr char label[] = "label";
constexpr char emptyLabel[] = "empty-label";

/// A string of an entry, and the name by which other programs look for it.
struct Field {
  std::optional<SecText> SecAttributes::*value;
  const char* name;
};

constexpr Field genericFields[] = {{&SecAttributes::account, "username"},
                                   {&SecAttributes::service, "service"}};
constexpr Field internetFields[] = {{&SecAttributes::account, "user"},
                                    {&SecAttributes::server, "server"},
                                    {&SecAttributes::path, "object"},
                                    {&SecAttributes::protocol, "protocol"}};

bool isInternet(const SecAttributes& attributes) {
  return attributes.itemClass == SecItemClass::internetPassword;
}

std::span<const Field> fieldsOf(const SecAttributes& attributes) {
  if (isInternet(attributes)) return internetFields;
  return genericFields;
}

const char* classOf(const SecAttributes& attributes) { return isInternet(attributes) ? internet : generic; }

/// The schemas under which other programs keep such passwords.
const char* schemaOf(const SecAttributes& attributes) {
  return isInternet(attributes) ? "org.gnome.keyring.NetworkPassword" : "org.freedesktop.Secret.Generic";
}

SecDesktopText digitsOf(std::int64_t number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

std::int64_t numberOf(const SecDesktopText& digits) {
  std::int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, number);
  secRequire(read.ec == std::errc() && read.ptr == end, errSecDecode);
  return number;
}

/// The digest of the identity: its class and its values, each after a mark that says whether there is one,
/// with NUL between them, which no value contains.
std::string identifierOf(const SecAttributes& attributes) {
  const SecAttributes identity = secIdentity(attributes);
  SecDesktopText canonical = classOf(identity);
  const auto add = [&](const std::optional<SecDesktopText>& value) {
    canonical.append(1, '\0').append(1, value ? '+' : '-');
    if (value) canonical += *value;
  };
  for (const Field& field : fieldsOf(identity)) {
    const auto& value = identity.*field.value;
    add(value ? std::optional(secEncodeText(*value)) : std::nullopt);
  }
  if (identity.port) add(digitsOf(*identity.port));
  return secDesktopDigest(canonical);
}

/// Returns the names of the values that the entry has: a missing value is not an empty one.
SecDesktopText namesOf(const SecAttributes& attributes) {
  SecDesktopText names;
  const auto add = [&](const char* name) { names.append(names.empty() ? "" : ",").append(name); };
  for (const Field& field : fieldsOf(attributes))
    if (attributes.*field.value) add(field.name);
  if (attributes.port) add(port);
  if (attributes.label) add(attributes.label->empty() ? emptyLabel : label);
  return names;
}

bool contains(const SecDesktopText& names, std::string_view name) {
  for (std::string_view rest = names; !rest.empty();) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    if (rest.substr(0, comma) == name) return true;
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return false;
}

/// What people see of an entry that has no label.
SecDesktopText labelFor(const SecAttributes& attributes) {
  for (const auto* text : {&attributes.label, &attributes.server, &attributes.service, &attributes.account})
    if (*text && !(*text)->empty()) return secEncodeText(**text);
  return application;
}

void requireSize(const SecDesktopProperties& properties) {
  std::size_t total = properties.label.size();
  for (const auto& [name, value] : properties.attributes) total += value.size();
  secRequire(total <= largestTotal, errSecDataTooLarge);
}

/// Whether there is only one identity that the query matches.
bool isWhole(const SecQuery& query) {
  const SecAttributes& wanted = query.attributes;
  if (query.exactly) return true;
  for (const Field& field : fieldsOf(wanted))
    if (!(wanted.*field.value)) return false;
  return wanted.port.has_value() || !isInternet(wanted);
}

const SecDesktopText* valueOf(const SecDesktopAttributes& attributes, const char* name) {
  const auto found = attributes.find(name);
  return found == attributes.end() ? nullptr : &found->second;
}

SecItemClass classNamed(const SecDesktopText& name) {
  secRequire(name == generic || name == internet, errSecDecode);
  return name == generic ? SecItemClass::genericPassword : SecItemClass::internetPassword;
}

std::optional<SecText> labelIn(const SecDesktopProperties& properties, const SecDesktopText& names) {
  if (contains(names, emptyLabel)) return SecText();
  if (contains(names, label)) return secDecodeText(properties.label);
  return std::nullopt;
}

SecAttributes decode(const SecDesktopProperties& properties, const SecDesktopText& names,
                     SecItemClass itemClass) {
  SecAttributes attributes;
  attributes.itemClass = itemClass;
  for (const Field& field : fieldsOf(attributes)) {
    if (!contains(names, field.name)) continue;
    const SecDesktopText* const value = valueOf(properties.attributes, field.name);
    attributes.*field.value = value ? secDecodeText(*value) : SecText();
  }
  const SecDesktopText* const number = valueOf(properties.attributes, port);
  if (contains(names, port)) attributes.port = numberOf(number ? *number : SecDesktopText());
  attributes.label = labelIn(properties, names);
  return attributes;
}

bool isOrder(const SecDesktopText& order) {
  return order.size() == orderDigits &&
         std::all_of(order.begin(), order.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

SecDesktopProperties secEncodeProperties(const SecDesktopEntry& entry) {
  const SecAttributes& attributes = entry.attributes;
  SecDesktopProperties properties{secSearchAttributes(), labelFor(attributes)};
  SecDesktopAttributes& all = properties.attributes;
  for (const Field& field : fieldsOf(attributes))
    if (attributes.*field.value) all[field.name] = secEncodeText(*(attributes.*field.value));
  if (attributes.port) all[port] = digitsOf(*attributes.port);
  all["vx-class"] = classOf(attributes);
  all["vx-id"] = identifierOf(attributes);
  all["vx-order"] = entry.order;
  all["vx-has"] = namesOf(attributes);
  all["xdg:schema"] = schemaOf(attributes);
  requireSize(properties);
  return properties;
}

std::optional<SecDesktopEntry> secDecodeProperties(const SecDesktopProperties& properties) {
  const SecDesktopAttributes& all = properties.attributes;
  const SecDesktopText* const owner = valueOf(all, "application");
  const SecDesktopText* const itemClass = valueOf(all, "vx-class");
  const SecDesktopText* const identifier = valueOf(all, "vx-id");
  const SecDesktopText* const order = valueOf(all, "vx-order");
  const SecDesktopText* const names = valueOf(all, "vx-has");
  if (!owner || *owner != application || !itemClass || !identifier || !order || !names) return std::nullopt;
  SecDesktopEntry entry{decode(properties, *names, classNamed(*itemClass)), std::string(*order)};
  secRequire(isOrder(*order) && identifierOf(entry.attributes) == std::string_view(*identifier),
             errSecDecode);
  return entry;
}

SecDesktopAttributes secSearchAttributes(const SecQuery& query) {
  const SecAttributes& wanted = query.attributes;
  SecDesktopAttributes asked = secSearchAttributes();
  if (isWhole(query)) {
    asked["vx-id"] = identifierOf(wanted);
    return asked;
  }
  asked["vx-class"] = classOf(wanted);
  for (const Field& field : fieldsOf(wanted)) {
    if (!(wanted.*field.value)) continue;
    SecDesktopText value = secEncodeText(*(wanted.*field.value));
    // An empty path is the same as none, and there are services that do not find long values.
    if (!value.empty() && value.size() <= largestAsked) asked[field.name] = std::move(value);
  }
  if (wanted.port.value_or(0) != 0) asked[port] = digitsOf(*wanted.port);
  return asked;
}

SecDesktopAttributes secSearchAttributes() { return {{"application", application}}; }

std::string secNextOrder() {
  static std::atomic<std::int64_t> last;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const std::int64_t present = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  std::int64_t before = last.load();
  std::int64_t next = 0;
  do next = std::max(present, before + 1);
  while (!last.compare_exchange_weak(before, next));
  const std::string digits = std::to_string(next);
  return std::string(orderDigits - std::min(orderDigits, digits.size()), '0') + digits;
}
