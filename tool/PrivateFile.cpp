#include "tool/PrivateFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tool/Descriptor.h"
#include "tool/Failure.h"

namespace {

/// A file under a temporary name next to the one that it is to become.
class Draft {
 public:
  explicit Draft(const std::string& path)
      : path_(path), name_(path + ".XXXXXX"), file_(mkostemp(name_.data(), O_CLOEXEC)) {
    require(static_cast<bool>(file_));
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (file_) unlink(name_.c_str());
  }

  void write(std::span<const std::byte> bytes) const {
    require(fchmod(file_.number(), S_IRUSR | S_IWUSR) == 0 && writeFully(file_.number(), bytes) &&
            fsync(file_.number()) == 0);
  }
  void publish() const { require(link(name_.c_str(), path_.c_str()) == 0); }

 private:
  void require(bool success) const {
    if (!success) failWithErrno("cannot make {1}"_text(path_));
  }

  std::string path_, name_;
  Descriptor file_;
};

}  // namespace

void writePrivateFile(const std::string& path, std::span<const std::byte> bytes) {
  const Draft draft(path);
  draft.write(bytes);
  draft.publish();
}
