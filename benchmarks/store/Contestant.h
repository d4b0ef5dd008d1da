#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A credential store of passwords by account number, as the benchmark drives it. What cannot be done throws
/// std::runtime_error.
class Contestant {
 public:
  virtual ~Contestant() = default;
  virtual std::string name() const = 0;
  /// Puts in accounts 0 to `count`; how long that takes is not measured.
  virtual void fill(std::size_t count) = 0;
  virtual void add(std::size_t account) = 0;
  /// Whether there is such an account; reads its password too.
  virtual bool look(std::size_t account) = 0;
  virtual void update(std::size_t account) = 0;
  virtual void remove(std::size_t account) = 0;
};

/// The file store in a new folder below `folder`, opened once or for every operation.
std::unique_ptr<Contestant> makeFileStore(const std::string& folder, bool openedPerCall);
/// Two ways to look at every entry of a file store of `held`: reading its rows in a transaction, and listing
/// them through SecItemCopyMatching, which makes an array of dictionaries. Each returns how many there are.
struct Listing {
  std::function<std::size_t()> rows;
  std::function<std::size_t()> list;
};
Listing makeListing(const std::string& folder, std::size_t held);
/// What SQLite takes at least for changes that last: the bound of a store on top of it.
std::unique_ptr<Contestant> makeSQLiteAlone(const std::string& folder, bool openedPerCall);
/// The desktop's store by libsecret's simple functions.
std::unique_ptr<Contestant> makeLibsecret();
