#include <Foundation/NSUnicode.h>

#include <cstdlib>

#include "tool/EntrySearch.h"
#include "tool/Failure.h"
#include "tool/GitCredential.h"
#include "tool/KeychainStore.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

std::optional<GitCredential> credentialOf(const SecRow& row) {
  return GitCredential::ofSecret(textOf(row.entry.secret.bytes()));
}

SecretText answerOf(const SecRow& row, const GitCredential& request) {
  const auto credential = credentialOf(row);
  if (!credential)
    throw Failure("the password has several lines or a control character, which git cannot take"_text);
  const auto username = NSUTF8FromUTF16(row.entry.attributes.account.value_or(SecText()));
  const bool isNamed = row.entry.attributes.account && username;
  return credential->answer(request, isNamed ? GitCredential::Value(*username) : std::nullopt);
}

/// Writes the newest entry that matches.
void get(SecStorage& storage, const GitCredential& request) {
  const SecQuery query{request.attributes()};
  SecretText answer;
  readIn(storage, "the keychain cannot be read"_text, [&](SecTransaction& transaction) {
    const std::vector<SecRow> rows = matches(transaction, {&query, 1}, SecSecrets::read);
    for (auto row = rows.rbegin(); row != rows.rend() && answer.view().empty(); ++row)
      answer = answerOf(*row, request);
  });
  writeStandardOutput(answer.bytes());
}

SecAttributes newEntry(SecAttributes attributes, const GitCredential& request) {
  std::string label = "Git: " + std::string(*request["protocol"]) + "://";
  label += request["host"].value_or("");
  if (request["path"]) label += "/" + std::string(*request["path"]);
  attributes.label = SecText(*NSUTF16FromUTF8(label));
  if (attributes.port == 0) attributes.port.reset();
  return attributes;
}

/// Returns whether the row is the newest of the host, whose entries git is given newest first.
bool isNewest(SecTransaction& transaction, const SecRow& row, SecQuery host) {
  host.attributes.account.reset();
  host.attributes.path.reset();
  return matches(transaction, {&host, 1}, SecSecrets::skip).back().number == row.number;
}

void put(SecTransaction& transaction, const GitCredential& request) {
  const SecAttributes wanted = request.attributes();
  const std::optional<SecRow> present = exactMatch(transaction, wanted, SecSecrets::read);
  const auto former = present ? credentialOf(*present) : std::nullopt;
  const SecretText secret = request.secret(former.value_or(GitCredential()));
  if (present && isNewest(transaction, *present, {wanted})) {
    if (textOf(present->entry.secret.bytes()) != secret.view())
      transaction.replace(present->number, present->entry.attributes, SecSecret(secret.bytes()));
    return;
  }
  if (present) transaction.remove(present->number);
  transaction.insert(
      {present ? present->entry.attributes : newEntry(wanted, request), SecSecret(secret.bytes())});
}

void store(SecStorage& storage, const GitCredential& request) {
  if (!request.isLasting()) return;
  changeIn(storage, "the password was not stored"_text,
           [&](SecTransaction& transaction) { put(transaction, request); });
}

/// Removes what matches, unless git rejects another password than the present one.
void erase(SecStorage& storage, const GitCredential& request) {
  const SecQuery query{request.attributes()};
  changeIn(storage, "the password was not erased"_text, [&](SecTransaction& transaction) {
    for (const SecRow& row : matches(transaction, {&query, 1}, SecSecrets::read))
      if (credentialOf(row).value_or(GitCredential()).hasSecretsOf(request)) transaction.remove(row.number);
  });
}

struct Operation {
  void (*run)(SecStorage&, const GitCredential&);
  SecFileStorage::Missing missing;
};

Operation operationNamed(const std::string& name) {
  if (name == "get") return {get, SecFileStorage::Missing::refuse};
  if (name == "store") return {store, SecFileStorage::Missing::make};
  return {name == "erase" ? erase : nullptr, SecFileStorage::Missing::refuse};
}

int run(const std::string& name, KeychainStore& keychain) {
  const Operation operation = operationNamed(name);
  if (!operation.run) return 0;  // of a later git
  const NSRef<NSData> input = readSecretInput();
  const GitCredential request = GitCredential::ofRequest(textOf(input->bytes()));
  const char* const prompts = std::getenv("GIT_TERMINAL_PROMPT");
  if (prompts && isFalseForGit(prompts)) keychain.noPrompt = true;
  if (request.isNamed()) operation.run(*keychain.open(operation.missing), request);
  return 0;
}

}  // namespace

void addGitHelper(CLI::App& app, Action& action) {
  const auto name = std::make_shared<std::string>();
  const auto keychain = std::make_shared<KeychainStore>();
  keychain->addOptions(app);
  app.add_option("OPERATION", *name, "get, store or erase; others are ignored")->required();
  app.callback([=, &action] { action = [=] { return run(*name, *keychain); }; });
}
