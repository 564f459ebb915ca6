#include "platform/posix/posix_env.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/posix/user_dirs.h"
#include "runtime/winpath.h"

namespace sentrune::posix {

namespace {

std::string PrefixOrDefault(const std::string& wineprefix) {
  return wineprefix.empty() ? DefaultWinePrefix() : wineprefix;
}

}  // namespace

PosixEnv::PosixEnv(PosixEnvOptions options)
    : wineprefix_(PrefixOrDefault(options.wineprefix)),
      files_(DriveMap::Build(wineprefix_, options.drives)),
      processes_(files_, std::move(options.associations)),
      moduleName_(std::move(options.moduleName)) {
  if (!options.homeHostDir.empty())
    moduleFolder_ = rt::AddBackslash(files_.Drives().HostToWindows(options.homeHostDir).value_or(""));
}

std::string PosixEnv::WindowsFolder(const std::string& hostFolder) const {
  std::error_code ec;
  if (hostFolder.empty() || !std::filesystem::is_directory(hostFolder, ec)) return {};
  std::string path = files_.Drives().HostToWindows(hostFolder).value_or("");
  // SHGetFolderPath gives folders without the trailing "\" (a drive root keeps it).
  if (path.size() > 3 && path.back() == '\\') path.pop_back();
  return path;
}

std::string PosixEnv::SpecialFolderPath(int folder) {
  switch (folder) {
    case platform::kFolderDesktop: return WindowsFolder(DesktopFolder());
    case platform::kFolderAppData: return WindowsFolder(ConfigHome());
    case platform::kFolderSystem:
      return wineprefix_.empty() ? std::string() : WindowsFolder(wineprefix_ + "/drive_c/windows/system32");
    default: return {};
  }
}

std::string PosixEnv::TempPath() {
  const char* tmpdir = std::getenv("TMPDIR");
  const std::string host = tmpdir && tmpdir[0] == '/' ? tmpdir : "/tmp";
  return rt::AddBackslash(files_.Drives().HostToWindows(host).value_or(""));
}

}  // namespace sentrune::posix
