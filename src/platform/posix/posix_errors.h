#pragma once
// The single translation from the host's errno values to the run time's error
// numbers, so that the core sees the numbers it would see under Windows.
#include <cstdint>
#include <string>

#include "runtime/vb_error.h"

namespace sentrune::posix {

// ENOENT 53, ENOTDIR 76, EACCES/EPERM/EROFS 70, EEXIST 58, ENOSPC/EDQUOT 61,
// anything else 75. The message names `windowsPath`.
rt::VbError ErrnoToVbError(int err, const std::string& windowsPath);

// A run-time error whose message names the Windows path it concerns.
rt::VbError PathError(int32_t number, const std::string& windowsPath);

}  // namespace sentrune::posix
