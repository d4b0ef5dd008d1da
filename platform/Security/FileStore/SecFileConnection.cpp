#include <Security/FileStore/SecFileConnection.h>

#include <cerrno>

#include <Security/FileStore/SecFileSchema.h>

SecFileConnection::SecFileConnection(SecFileFolder folder, const std::string& name,
                                     std::chrono::milliseconds waitLimit)
    : folder_(std::move(folder)), name_(name), process_(::getpid()), database_(folder_, name_, waitLimit) {}

bool SecFileConnection::isOurs() const { return process_ == ::getpid(); }

bool SecFileConnection::isCurrent() const {
  struct stat status {};
  if (::lstat(folder_.pathOf(name_).c_str(), &status) == 0)
    return secRequirePrivateFile(status) == database_.fileNumber();
  if (errno != ENOENT) secFailByErrno();
  return false;
}

const SecFileHeader& SecFileConnection::header() {
  if (version_ != database_.dataVersion()) readAgain();
  return header_;
}

void SecFileConnection::readAgain() {
  version_.reset();
  seal_.reset();
  const SecBytes content = secReadRecord(database_, {SecFileRecordKind::header, secHeaderNumbers[0]});
  header_ = secDecodeHeader(content);
  headerDigest_ = secHeaderDigest(content);
  secCheckTables(database_, header_.fileNumber);
  version_ = database_.dataVersion();
}

SecFileSeal& SecFileConnection::seal(const SecFileKeys& keys) {
  const SecFileHeader& current = header();
  if (seal_) return *seal_;
  SecFileSeal read = secReadSeal({database_, keys, current.store});
  secRequire(secSame(read.header, headerDigest_), errSecDecode);
  return seal_.emplace(std::move(read));
}
