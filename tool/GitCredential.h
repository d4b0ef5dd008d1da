#pragma once

#include <Security/SecEntry.h>

#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "tool/SecretText.h"

/// A credential as git and its helpers describe it to each other, in lines of "key=value" (git-credential(1),
/// "Input/output format"). The values are views of the text that was given, which must outlive them.
class GitCredential {
 public:
  using Value = std::optional<std::string_view>;

  GitCredential() = default;
  /// Reads a request, up to an empty line. Throws Failure for a line without "=", for a carriage return or
  /// NUL, and for 1 MiB or more.
  static GitCredential ofRequest(std::string_view text);
  /// Reads the secret of an entry: the password, in the first line, then lines of what is kept with it.
  /// Returns no value for what git cannot have stored.
  static std::optional<GitCredential> ofSecret(std::string_view text);

  /// Returns the last value of a key; no value if it is missing.
  Value operator[](std::string_view key) const;

  /// Returns whether there is enough to look for: the protocol, and the host or the path.
  bool isNamed() const;
  /// Returns whether there is a secret to keep, and whether it may be kept.
  bool isLasting() const;
  /// Returns what an entry for it has, and what its entries match. A missing port is port 0, which is also
  /// what an entry without a port has. Throws Failure for names that are not UTF-8.
  SecAttributes attributes() const;

  /// Returns the secret of an entry for it. What it does not mention is taken from the present entry, if that
  /// has the same password.
  SecretText secret(const GitCredential& present) const;
  /// Returns whether the secrets that the request names, if any, are those of this entry.
  bool hasSecretsOf(const GitCredential& request) const;
  /// Returns the lines that answer the request from this entry; none if it has nothing that git asked for.
  SecretText answer(const GitCredential& request, Value username) const;

 private:
  bool addLine(std::string_view line);

  std::map<std::string_view, std::string_view> values_;
  std::set<std::string_view> capabilities_;  // what the sender understands
};

/// Returns whether git takes the value of a setting for false.
bool isFalseForGit(std::string_view value);
