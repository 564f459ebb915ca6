#include "platform/posix/posix_errors.h"

#include <cerrno>

namespace sentrune::posix {

namespace {

int32_t ErrnoToNumber(int err) {
  switch (err) {
    case ENOENT: return rt::errnum::kFileNotFound;
    case ENOTDIR: return rt::errnum::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS: return rt::errnum::kPermissionDenied;
    case EEXIST: return rt::errnum::kFileAlreadyExists;
    case ENOSPC:
    case EDQUOT: return rt::errnum::kDiskFull;
    default: return rt::errnum::kPathFileAccessError;
  }
}

}  // namespace

rt::VbError ErrnoToVbError(int err, const std::string& windowsPath) {
  return PathError(ErrnoToNumber(err), windowsPath);
}

rt::VbError PathError(int32_t number, const std::string& windowsPath) {
  return rt::MakeError(number, rt::DescribeError(number) + ": " + windowsPath);
}

}  // namespace sentrune::posix
