#pragma once
// INI files through the system's own profile functions.
//
// The section, key and value reach GetPrivateProfileStringA and
// WritePrivateProfileStringA as Windows-1252 bytes, whatever the system's
// ANSI code page, because the file is Windows-1252 to every other reader of
// it; on a system with another ANSI code page the bytes in the file are
// those of that code page, as they are for the IDE's own calls. A path that
// the ANSI code page cannot spell (a Japanese folder name on a Western
// system) goes to the wide functions instead, with the same text in UTF-16:
// on a Windows-1252 system the file's bytes are the same either way.
//
// A relative path is made full against the current folder first: the
// profile functions would look for it in the Windows folder, the file
// functions that replace it in the current one.
//
// WritePrivateProfileString rewrites the file in place, so a failure halfway
// (a full disk) or a reader at the wrong moment sees half a file. The change
// is therefore made by the real function on a copy beside the file,
// "<path>.tmp", which then replaces the file in one step with MoveFileExW
// (MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH). The copy is removed
// whenever a step fails, and a read-only file is refused before any copy is
// made, as the real function refuses it. The replacement takes the folder's
// default security, not the file's own.
//
// The rest is the system's affair, and Wine's differs from the in-house
// engine (ini_file.h) in two ways: a write rewrites every line with CR LF
// line ends and keeps the existing spelling of the key, where the engine
// keeps other lines byte for byte; and names match without regard to case in
// ASCII only ("CL\xC9" does not find "Cl\xE9").
#include <cstdint>
#include <string>

#include "platform/profile.h"

namespace sentrune::win32 {

class Win32ProfileFiles : public platform::ProfileFiles {
 public:
  std::string GetString(const std::string& section, const std::string& key,
                        const std::string& defaultValue, uint32_t size,
                        const std::string& path) override;
  bool WriteString(const std::string& section, const std::string& key, const std::string& value,
                   const std::string& path) override;
};

}  // namespace sentrune::win32
