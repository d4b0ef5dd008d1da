#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A credential store of passwords by account number, as the benchmark drives it. An operation that fails
/// throws std::runtime_error.
class Contestant {
 public:
  virtual ~Contestant() = default;
  virtual std::string name() const = 0;
  /// Adds the accounts below `count`; the time that this takes is not measured.
  virtual void fill(std::size_t count) = 0;
  virtual void add(std::size_t account) = 0;
  /// Returns whether the account exists, and reads its password.
  virtual bool look(std::size_t account) = 0;
  virtual void update(std::size_t account) = 0;
  virtual void remove(std::size_t account) = 0;
};

/// Returns the file store in a new folder below `folder`, opened once or for every operation.
std::unique_ptr<Contestant> makeFileStore(const std::string& folder, bool openedPerCall);
/// Two ways to read every one of `held` entries of a file store: reading its rows in a transaction, and
/// listing them with SecItemCopyMatching, which makes an array of dictionaries. Each returns the number of
/// entries.
struct Listing {
  std::function<std::size_t()> rows;
  std::function<std::size_t()> list;
};
Listing makeListing(const std::string& folder, std::size_t held);
/// Adding `held` entries to an empty file store in one transaction, and then giving it new keys.
struct Rotation {
  std::function<void()> write;
  std::function<void()> rotate;
};
Rotation makeRotation(const std::string& folder, std::size_t held);
/// Returns SQLite with durable changes and nothing else: the bound for a store that is built on it.
std::unique_ptr<Contestant> makeSQLiteAlone(const std::string& folder, bool openedPerCall);
/// Returns the desktop's store through libsecret's simple functions.
std::unique_ptr<Contestant> makeLibsecret();
/// Returns the same store through SecDesktopStorage.
std::unique_ptr<Contestant> makeDesktopStore();
