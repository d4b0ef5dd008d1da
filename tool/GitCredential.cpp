#include "tool/GitCredential.h"

#include <Foundation/NSUnicode.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

#include "tool/Failure.h"

namespace {

using namespace std::string_view_literals;

constexpr std::size_t limit = 1 << 20;
constexpr std::string_view breaks = "\r\0"sv;  // what git itself refuses, in addition to newlines

/// What an entry keeps in addition to the password.
constexpr std::string_view extras[] = {"password_expiry_utc", "oauth_refresh_token", "authtype",
                                       "credential"};

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

std::optional<SecText> textOfValue(const GitCredential::Value& value) {
  if (!value) return std::nullopt;
  const auto units = NSUTF16FromUTF8(*value);
  if (!units) throw Failure("the name of a credential is not UTF-8"_text);
  return SecText(*units);
}

/// Returns the port at the end of a host, or 0 if there is none or it is not written as git writes ports.
std::uint16_t portOf(std::string_view host) {
  const std::size_t colon = host.rfind(':');
  if (colon == host.npos || (host.front() != '[' && host.find(':') != colon)) return 0;
  const std::string_view digits = host.substr(colon + 1);
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  return error == std::errc() && std::to_string(port) == digits ? port : std::uint16_t{0};
}

void appendLine(SecretText& text, std::string_view key, const GitCredential::Value& value) {
  if (value) text << key << "=" << *value << "\n";
}

}  // namespace

bool isFalseForGit(std::string_view value) {
  std::string lower(value);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? char(c | 32) : c; });
  return lower.empty() || lower == "0" || lower == "false" || lower == "no" || lower == "off";
}

bool GitCredential::addLine(std::string_view line) {
  const std::size_t end = line.find('=');
  if (end == line.npos || line.find_first_of(breaks) != line.npos) return false;
  const std::string_view value = line.substr(end + 1);
  if (line.substr(0, end) == "capability[]")
    capabilities_.insert(value);
  else
    values_[line.substr(0, end)] = value;
  return true;
}

GitCredential GitCredential::ofRequest(std::string_view text) {
  if (text.size() >= limit) throw Failure("the credential is too large"_text);
  GitCredential credential;
  while (!text.empty() && text.front() != '\n')
    if (!credential.addLine(takeLine(text)))
      throw Failure("the description of the credential is malformed"_text);
  return credential;
}

std::optional<GitCredential> GitCredential::ofSecret(std::string_view text) {
  GitCredential credential;
  const std::string_view password = takeLine(text);
  while (!text.empty())
    if (!credential.addLine(takeLine(text))) return std::nullopt;
  for (const auto& [key, value] : credential.values_)
    if (std::find(std::begin(extras), std::end(extras), key) == std::end(extras)) return std::nullopt;
  if (password.find_first_of(breaks) != password.npos) return std::nullopt;
  if (!password.empty() || !credential["credential"]) credential.values_["password"] = password;
  return credential;
}

GitCredential::Value GitCredential::operator[](std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? Value() : found->second;
}

bool GitCredential::isNamed() const {
  const GitCredential& self = *this;
  return self["protocol"] && (self["host"] || self["path"]);
}

bool GitCredential::isLasting() const {
  const GitCredential& self = *this;
  const bool isComplete = (self["username"] && self["password"]) || (self["authtype"] && self["credential"]);
  return isComplete && isFalseForGit(self["ephemeral"].value_or(""));
}

SecAttributes GitCredential::attributes() const {
  const GitCredential& self = *this;
  SecAttributes attributes;
  attributes.itemClass = SecItemClass::internetPassword;
  attributes.account = textOfValue(self["username"]);
  attributes.protocol = textOfValue(self["protocol"]);
  attributes.path = textOfValue(self["path"]);
  if (const Value host = self["host"]) {
    attributes.port = portOf(*host);
    attributes.server = textOfValue(attributes.port == 0 ? host : host->substr(0, host->rfind(':')));
  }
  return attributes;
}

SecretText GitCredential::secret(const GitCredential& present) const {
  const GitCredential& self = *this;
  const bool isKnown = self["password"] && self["password"] == present["password"];
  SecretText text(self["password"].value_or(""));
  for (const std::string_view key : extras) {
    const Value value = self[key] || !isKnown ? self[key] : present[key];
    if (value) text << "\n" << key << "=" << *value;
  }
  return text;
}

bool GitCredential::hasSecretsOf(const GitCredential& request) const {
  const auto agrees = [&](std::string_view key) { return !request[key] || request[key] == (*this)[key]; };
  return agrees("password") && agrees("credential");
}

SecretText GitCredential::answer(const GitCredential& request, Value username) const {
  const GitCredential& self = *this;
  const bool isEncoded = self["credential"] && request.capabilities_.contains("authtype");
  SecretText text;
  if (!isEncoded && !(username && self["password"])) return text;
  if (isEncoded) appendLine(text, "capability[]", "authtype");
  appendLine(text, "username", username);
  for (const std::string_view key : {"authtype"sv, "credential"sv})
    if (isEncoded) appendLine(text, key, self[key]);
  for (const std::string_view key : {"password"sv, "password_expiry_utc"sv, "oauth_refresh_token"sv})
    appendLine(text, key, self[key]);
  return text;
}
