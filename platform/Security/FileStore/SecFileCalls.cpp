#include <Security/FileStore/SecFileCalls.h>

#include <cerrno>

namespace {

OSStatus statusOfError(int error) {
  switch (error) {
    case ENOMEM:
      return errSecAllocate;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return errSecDiskFull;
    case EROFS:
      return errSecReadOnly;
    case EACCES:
    case EPERM:
      return errSecNotAvailable;
    case ELOOP:
    case ENOTDIR:
    case EISDIR:
    case ENXIO:
      return errSecNotPrivate;
    default:
      return errSecIO;
  }
}

}  // namespace

void secFailByErrno() { throw SecFailure{statusOfError(errno)}; }
