#include "tool/DockerProtocol.h"

#include <algorithm>

#include "tool/Failure.h"
#include "tool/JSONReader.h"
#include "tool/JSONText.h"
#include "tool/StandardStreams.h"

namespace {

constexpr char noServer[] = "no credentials server URL";
constexpr char noUsername[] = "no credentials username";

/// Returns the lines of standard input joined, as Docker's own helpers read them.
SecretText joinedInput() {
  const NSRef<NSData> input = readSecretInput();
  SecretText joined;
  for (std::string_view rest = textOf(input->bytes()); !rest.empty();) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    joined << line;
  }
  return joined;
}

SecretText* memberNamed(DockerLogin& login, std::string_view name) {
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  if (lower == "serverurl") return &login.server;
  if (lower == "username") return &login.username;
  return lower == "secret" ? &login.secret : nullptr;
}

DockerLogin parsedLogin() {
  const SecretText input = joinedInput();
  JSONReader reader(input.view());
  DockerLogin login;
  if (reader.type() == JSONReader::Type::null) return reader.skip(), DockerLogin();
  reader.forEachMember([&](std::string_view name) {
    SecretText* const member = memberNamed(login, name);
    if (!member || reader.type() == JSONReader::Type::null) return reader.skip();
    *member = reader.string();
  });
  return login;
}

void appendMember(JSONText& text, std::string_view name, std::string_view value) {
  text.appendString(name);
  text << ":";
  text.appendString(value);
}

/// Docker's own encoder escapes these for the sake of web pages, and nothing else beyond what it must.
bool isLiteral(char32_t point) {
  return point != '<' && point != '>' && point != '&' && point != 0x2028 && point != 0x2029;
}

}  // namespace

std::string serverFromInput() {
  constexpr char space[] = " \t\v\f\r";
  std::string server(joinedInput().view());
  server.erase(0, server.find_first_not_of(space));
  server.erase(server.find_last_not_of(space) + 1);
  if (server.empty()) throw Failure(noServer);
  return server;
}

DockerLogin loginFromInput() {
  DockerLogin login = parsedLogin();
  if (login.server.view().empty()) throw Failure(noServer);
  if (login.username.view().empty()) throw Failure(noUsername);
  return login;
}

void writeLogin(std::string_view server, std::string_view username, std::string_view secret) {
  JSONText text(isLiteral);
  text << "{";
  appendMember(text, "ServerURL", server);
  text << ",";
  appendMember(text, "Username", username);
  text << ",";
  appendMember(text, "Secret", secret);
  text << "}\n";
  writeStandardOutput(text.bytes());
}

void writeUsernames(const std::map<std::string, std::string>& usernames) {
  JSONText text(isLiteral);
  text << "{";
  for (bool isFirst = true; const auto& [server, username] : usernames) {
    if (!std::exchange(isFirst, false)) text << ",";
    appendMember(text, server, username);
  }
  text << "}\n";
  writeStandardOutput(text.bytes());
}
