#include "tool/KeychainEntry.h"

#include <Foundation/NSUnicode.h>

#include <iterator>

namespace {

const char* const protocols[] = {"", "http", "https", "ftp", "ssh"};  // in the order of the enumeration

NSRefPtr<NSString> stringOf(const std::optional<std::string>& argument) {
  return argument ? NSRefPtr<NSString>(stringOfArgument(*argument)) : nullptr;
}

VXInternetKeychainItemProtocol protocolNamed(const std::string& name) {
  const auto found = std::find(std::begin(protocols), std::end(protocols), name);
  return static_cast<VXInternetKeychainItemProtocol>(found - std::begin(protocols));
}

}  // namespace

const CLI::Validator isUTF8(
    [](std::string& argument) -> std::string {
      return NSString::stringWithUTF8String(argument) ? "" : "the value is not UTF-8";
    },
    "", "UTF-8");

const CLI::Validator isDecimal(
    [](std::string& argument) -> std::string {
      const bool isNumber = argument.find_first_not_of("0123456789") == argument.npos && !argument.empty();
      const bool isPadded = argument.size() > 1 && argument.front() == '0';
      return isNumber && !isPadded ? "" : argument + " is not a decimal number without a leading zero";
    },
    "", "DECIMAL");

NSRef<NSString> stringOfArgument(const std::string& argument) {
  return NSString::stringWithUTF8String(argument);
}

SecText textOfArgument(const std::string& argument) { return SecText(*NSUTF16FromUTF8(argument)); }

void KeychainEntry::addOptions(CLI::App& command, Required required) {
  CLI::Option* name = command.add_option("--account", account, "The account");
  name->check(isUTF8)->required(required == Required::kindAndAccount);
  CLI::Option_group* kind = command.add_option_group("kind");
  kind->add_option("--service", service, "The service of a generic password")->check(isUTF8);
  CLI::Option* host = kind->add_option("--server", server, "The server of an internet password");
  host->check(isUTF8);
  kind->require_option(required == Required::nothing ? 0 : 1, 1);
  command.add_option("--path", path, "The path on the server")->check(isUTF8)->needs(host);
  command.add_option("--port", port, "The port of the server")
      ->check(isDecimal)
      ->check(CLI::Range(1, 65535))
      ->needs(host);
  command.add_option("--protocol", protocol, "The protocol")
      ->check(CLI::IsMember(std::vector<std::string>(std::next(std::begin(protocols)), std::end(protocols))))
      ->needs(host);
}

NSRef<VXPasswordKeychainItem> KeychainEntry::makeItem(const NSRefPtr<NSString>& password,
                                                      const NSRefPtr<NSString>& label) const {
  if (service)
    return VXGenericKeychainItem::keychainItemWithUsername(stringOf(account), password, label,
                                                           stringOf(service));
  return VXInternetKeychainItem::keychainItemWithUsername(
      stringOf(account), password, label, stringOf(server), stringOf(path), port, protocolNamed(protocol));
}

SecAttributes KeychainEntry::attributes() const {
  SecAttributes attributes;
  const auto set = [](std::optional<SecText>& attribute, const std::optional<std::string>& argument) {
    if (argument) attribute = textOfArgument(*argument);
  };
  if (server) attributes.itemClass = SecItemClass::internetPassword;
  set(attributes.account, account);
  set(attributes.service, service);
  set(attributes.server, server);
  set(attributes.path, path);
  if (port != 0) attributes.port = port;
  if (!protocol.empty()) attributes.protocol = textOfArgument(protocol);
  return attributes;
}

std::vector<SecQuery> KeychainEntry::queries() const {
  std::vector<SecQuery> queries{{attributes()}};
  if (service || server) return queries;
  queries.push_back(queries.front());
  queries.back().attributes.itemClass = SecItemClass::internetPassword;
  return queries;
}
