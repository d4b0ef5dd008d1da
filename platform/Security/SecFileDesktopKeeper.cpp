#include <Security/FileStore/SecFileDesktopKeeper.h>
#include <Security/SecFailure.h>

#ifdef VX_HAS_DESKTOP_STORE

#include <Security/DesktopStore/SecDesktopKeys.h>

#include <charconv>

namespace {

SecDesktopKeyOwner ownerOf(const SecFileOwner& owner) {
  return {owner.path, std::to_string(owner.file.device), std::to_string(owner.file.inode)};
}

/// Returns 0, which no file has, for what is not a number.
std::uint64_t numberOf(const std::string& digits) {
  std::uint64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

class Keeper final : public SecFileKeeper {
 public:
  std::vector<std::pair<std::string, SecFileOwner>> list() override {
    std::vector<std::pair<std::string, SecFileOwner>> all;
    for (const auto& [name, owner] : secListDesktopKeys())
      all.push_back({name, {owner.path, {numberOf(owner.device), numberOf(owner.inode)}}});
    return all;
  }
  std::vector<SecSecret> read(const std::string& name) override { return secReadDesktopKeys(name); }
  void write(const std::string& name, const SecFileOwner& owner, const SecSecret& secret,
             const SecDesktopOptions& options) override {
    secWriteDesktopKey(name, ownerOf(owner), secret, options);
  }
  void erase(const std::string& name, const SecFileOwner& owner) override {
    secEraseDesktopKey(name, ownerOf(owner));
  }
};

}  // namespace

#else

namespace {

class Keeper final : public SecFileKeeper {
 public:
  std::vector<std::pair<std::string, SecFileOwner>> list() override { throw SecFailure{errSecNotBuiltIn}; }
  std::vector<SecSecret> read(const std::string&) override { throw SecFailure{errSecNotBuiltIn}; }
  void write(const std::string&, const SecFileOwner&, const SecSecret&, const SecDesktopOptions&) override {
    throw SecFailure{errSecNotBuiltIn};
  }
  void erase(const std::string&, const SecFileOwner&) override { throw SecFailure{errSecNotBuiltIn}; }
};

}  // namespace

#endif

std::unique_ptr<SecFileKeeper> secMakeDesktopKeeper() { return std::make_unique<Keeper>(); }
