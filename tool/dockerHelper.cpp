#include <Foundation/NSUnicode.h>

#include "tool/DockerProtocol.h"
#include "tool/EntrySearch.h"
#include "tool/Failure.h"
#include "tool/KeychainStore.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

constexpr char notFound[] = "credentials not found in native keychain";  // which Docker looks for

SecText unitsOf(std::string_view utf8) {
  const auto units = NSUTF16FromUTF8(utf8);
  if (!units) throw Failure("the server URL is not UTF-8");
  return SecText(*units);
}

std::string utf8Of(const std::optional<SecText>& text) {
  return NSUTF8FromUTF16(text.value_or(SecText())).value_or("");
}

/// Returns what all entries of Docker have, and no others.
SecAttributes anyServer() {
  SecAttributes attributes;
  attributes.itemClass = SecItemClass::internetPassword;
  attributes.protocol = SecText(u"docker");
  return attributes;
}

SecQuery queryFor(std::string_view server) {
  SecQuery query{anyServer()};
  query.attributes.server = unitsOf(server);
  return query;
}

std::vector<SecRow> rowsOf(const KeychainStore& keychain, const SecQuery& query, SecSecrets secrets) {
  std::vector<SecRow> rows;
  readIn(*keychain.open(SecFileStorage::Missing::refuse), "the keychain cannot be read",
         [&](SecTransaction& transaction) {
           rows = matches(transaction, {&query, 1}, secrets);
         });
  return rows;
}

void removeAll(SecTransaction& transaction, const SecQuery& query) {
  for (const SecRow& row : matches(transaction, {&query, 1}, SecSecrets::skip))
    transaction.remove(row.number);
}

void get(const KeychainStore& keychain) {
  const std::string server = serverFromInput();
  const std::vector<SecRow> rows = rowsOf(keychain, queryFor(server), SecSecrets::read);
  if (rows.empty() || rows.back().entry.secret.bytes().empty()) throw Failure(notFound);
  const SecEntry& entry = rows.back().entry;
  writeLogin(server, utf8Of(entry.attributes.account), textOf(entry.secret.bytes()));
}

void store(const KeychainStore& keychain) {
  const DockerLogin login = loginFromInput();
  const SecQuery query = queryFor(login.server.view());
  SecEntry entry{query.attributes, SecSecret(login.secret.bytes())};
  entry.attributes.account = unitsOf(login.username.view());
  entry.attributes.label = SecText(u"Docker Credentials");
  changeIn(*keychain.open(), "the password was not stored", [&](SecTransaction& transaction) {
    removeAll(transaction, query);
    transaction.insert(entry);
  });
}

void erase(const KeychainStore& keychain) {
  const SecQuery query = queryFor(serverFromInput());
  changeIn(*keychain.open(SecFileStorage::Missing::refuse), "the password was not erased",
           [&](SecTransaction& transaction) { removeAll(transaction, query); });
}

void list(const KeychainStore& keychain) {
  std::map<std::string, std::string> usernames;
  for (const SecRow& row : rowsOf(keychain, {anyServer()}, SecSecrets::skip))
    usernames[utf8Of(row.entry.attributes.server)] = utf8Of(row.entry.attributes.account);
  writeUsernames(usernames);
}

void act(const std::vector<std::string>& arguments, const KeychainStore& keychain) {
  const std::map<std::string, void (*)(const KeychainStore&)> actions = {
      {"get", get}, {"store", store}, {"erase", erase}, {"list", list}};
  if (arguments.size() != 1)
    throw Failure("Usage: docker-credential-vxfoundation <store|get|erase|list|version>");
  if (arguments.front() == "version") return writeStandardOutput(VX_VERSION "\n");
  const auto found = actions.find(arguments.front());
  if (found == actions.end()) throw Failure("Unknown credential action `" + arguments.front() + "`");
  found->second(keychain);
}

/// Docker reads failures from standard output.
int run(const std::vector<std::string>& arguments, const KeychainStore& keychain) {
  try {
    return act(arguments, keychain), 0;
  } catch (const Failure& failure) {
    writeStandardOutput(std::string(failure.what()) + '\n');
    return 1;
  }
}

}  // namespace

void addDockerHelper(CLI::App& app, Action& action) {
  const auto arguments = std::make_shared<std::vector<std::string>>();
  const auto keychain = std::make_shared<KeychainStore>();
  keychain->addOptions(app);
  app.add_option("ACTION", *arguments, "get, store or erase, with input from standard input; list; version");
  app.callback([=, &action] { action = [=] { return run(*arguments, *keychain); }; });
}
