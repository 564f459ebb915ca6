#include "runtime/vb_error.h"

namespace sentrune::rt {

std::string DescribeError(int32_t number) {
  switch (number) {
    case errnum::kInvalidProcedureCall: return "Invalid procedure call or argument";
    case errnum::kOverflow: return "Overflow";
    case errnum::kTypeMismatch: return "Type mismatch";
    case errnum::kBadFileNameOrNumber: return "Bad file name or number";
    case errnum::kFileNotFound: return "File not found";
    case errnum::kFileAlreadyOpen: return "File already open";
    case errnum::kDeviceIoError: return "Device I/O error";
    case errnum::kFileAlreadyExists: return "File already exists";
    case errnum::kDiskFull: return "Disk full";
    case errnum::kPermissionDenied: return "Permission denied";
    case errnum::kDiskNotReady: return "Disk not ready";
    case errnum::kPathFileAccessError: return "Path/File access error";
    case errnum::kPathNotFound: return "Path not found";
    default: return "Application-defined or object-defined error";
  }
}

}  // namespace sentrune::rt
