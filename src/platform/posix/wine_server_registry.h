#pragma once
// The registry of a Wine prefix on this host: its registry files reached
// through the drive-mapped file system, guarded by the check for the
// prefix's running wineserver.
#include <memory>
#include <string>

#include "platform/posix/posix_file_system.h"
#include "platform/registry.h"
#include "runtime/result.h"

namespace sentrune::posix {

// `hostPrefix` is the prefix folder on the host ("~/.wine"); messages
// name it so. Fails with the registry's kInvalidParameter when no drive of
// the file system covers it. The file system must outlive the result.
rt::Result<std::unique_ptr<platform::Registry>> OpenWinePrefixRegistry(
    PosixFileSystem& files, const std::string& hostPrefix);

}  // namespace sentrune::posix
