#pragma once

#include <map>
#include <string>
#include <string_view>

#include "tool/SecretText.h"

/// What Docker and its credential helpers say to each other on the standard streams. The failures have the
/// messages that Docker's own helpers have.

struct DockerLogin {
  SecretText server, username, secret;
};

/// Reads the URL of a server. Throws Failure if there is none.
std::string serverFromInput();
/// Reads an object with "ServerURL", "Username" and "Secret". Throws Failure if it is malformed, or if one of
/// the first two is missing or empty.
DockerLogin loginFromInput();

/// Writes such an object.
void writeLogin(std::string_view server, std::string_view username, std::string_view secret);
/// Writes an object with the user name for each server.
void writeUsernames(const std::map<std::string, std::string>& usernames);
