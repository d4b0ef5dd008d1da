#include "tool/Spool.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include "tool/Failure.h"
#include "tool/Progress.h"
#include "tool/StandardStreams.h"

namespace {

std::string temporaryFolder() {
  const char* const chosen = getenv("TMPDIR");
  return chosen && *chosen ? chosen : "/var/tmp";
}

Descriptor makeFile(const std::string& folder) {
  std::string path = folder + "/vxfoundation-XXXXXX";
  Descriptor file(mkostemp(path.data(), O_CLOEXEC));
  if (!file) failWithErrno("cannot make a temporary file in {1}"_text(folder));
  if (unlink(path.c_str()) != 0) failWithErrno("cannot remove the name of {1}"_text(path));
  return file;
}

}  // namespace

void Spool::append(std::span<const std::byte> bytes) {
  length_ += bytes.size();
  if (!file_ && length_ <= memoryLength) {
    memory_.insert(memory_.end(), bytes.begin(), bytes.end());
    return;
  }
  if (!file_) {
    folder_ = temporaryFolder();
    file_ = makeFile(folder_);
    writeFile(memory_);
    memory_.clear();
  }
  writeFile(bytes);
}

void Spool::writeFile(std::span<const std::byte> bytes) const {
  if (!writeFully(file_.number(), bytes)) failWithErrno("cannot write a temporary file in {1}"_text(folder_));
}

void Spool::writeOut() {
  if (!file_) return writeStandardOutput(memory_);
  if (lseek(file_.number(), 0, SEEK_SET) < 0)
    failWithErrno("cannot read a temporary file in {1}"_text(folder_));
  memory_.resize(memoryLength);
  Progress progress("writing", length_, Progress::Output::written);
  for (;;) {
    const auto piece = readPiece(file_.number(), memory_, "a temporary file in " + folder_);
    if (piece.empty()) return;
    writeStandardOutput(piece);
    progress.advance(piece.size());
  }
}
