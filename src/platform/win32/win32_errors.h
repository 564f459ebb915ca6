#pragma once
// The single translation from Win32 error codes to the run time's error
// numbers. Every message names the file or key concerned and carries the
// system's own code and text, so that a failure on a user's machine can be
// told apart from another that the run time numbers the same way.
#include <cstdint>
#include <string>

#include "runtime/vb_error.h"

namespace sentrune::win32 {

// "The system cannot find the file specified." for 2: the system's text for
// a Win32 error, without its trailing line break.
std::string SystemMessage(uint32_t error);

// ERROR_FILE_NOT_FOUND 53; ERROR_PATH_NOT_FOUND, ERROR_BAD_NETPATH,
// ERROR_BAD_NET_NAME, ERROR_BAD_DEV_TYPE (Wine's answer for a missing
// server), ERROR_DIRECTORY 76; ERROR_ACCESS_DENIED,
// ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION, ERROR_WRITE_PROTECT 70;
// ERROR_FILE_EXISTS, ERROR_ALREADY_EXISTS 58; ERROR_DISK_FULL,
// ERROR_HANDLE_DISK_FULL 61; ERROR_NOT_READY, ERROR_INVALID_DRIVE 71;
// anything else 75. The message is "<run time's text>: <path> (Windows error
// <code>: <system's text>)".
rt::VbError Win32ToVbError(uint32_t error, const std::string& path);
// The same for GetLastError().
rt::VbError LastError(const std::string& path);
// That message under the number the run time gives the operation as a
// whole, whatever the system's reason (Shell: 53 for any program it cannot
// start).
rt::VbError Win32ToVbError(uint32_t error, const std::string& path, int32_t number);

}  // namespace sentrune::win32
