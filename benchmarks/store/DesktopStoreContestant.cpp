#include <Security/SecDesktopStorage.h>

#include "StorageContestant.h"

namespace {

class DesktopStore final : public StorageContestant {
 public:
  DesktopStore() {
    std::unique_ptr<SecDesktopStorage> storage;
    require(SecDesktopStorage::open({}, storage));
    storage_ = std::move(storage);
  }

  std::string name() const override { return "desktop store"; }

 private:
  std::shared_ptr<SecStorage> openStorage() override { return storage_; }

  std::shared_ptr<SecStorage> storage_;
};

}  // namespace

std::unique_ptr<Contestant> makeDesktopStore() { return std::make_unique<DesktopStore>(); }
