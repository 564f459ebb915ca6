#include "win32_host.h"

#include "platform/win32/windows_api.h"

#include <io.h>
#include <shlobj.h>

#include <atomic>
#include <cstdio>

#include "platform/tlb/typelib_source_portable.h"
#include "platform/win32/typelib_source_system.h"
#include "platform/win32/win32_env.h"
#include "platform/win32/win32_file_watch.h"
#include "platform/win32/win32_profile.h"
#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_text.h"
#include "platform/win32/win32_version_resources.h"
#include "runtime/winpath.h"
#include "seed_templates.h"

namespace sentrune::cli {
namespace {

// The full Windows path of a path given on the command line.
std::string FullPath(const std::string& path) {
  const std::wstring wide = win32::Widen(path);
  const DWORD size = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  if (size == 0) return path;
  std::wstring full(size, L'\0');
  const DWORD length = GetFullPathNameW(wide.c_str(), size, full.data(), nullptr);
  full.resize(length);
  return win32::Narrow(full);
}

class Win32HostEnv : public HostEnv {
 public:
  Win32HostEnv(const std::string& homeFolder, bool systemReader) : env_({homeFolder, "Sentrune"}) {
    if (systemReader) typelibs_ = std::make_unique<win32::SystemTypeLibSource>();
    else typelibs_ = std::make_unique<portable::PortableTypeLibSource>(env_.Files());
  }

  platform::Env& Env() override { return env_; }
  platform::ProfileFiles& Profiles() override { return profiles_; }
  platform::VersionResources& Versions() override { return versions_; }
  platform::TypeLibSource& TypeLibs() override { return *typelibs_; }
  std::optional<std::string> WindowsPath(const std::string& hostPath) override { return FullPath(hostPath); }
  // A folder is named without its trailing "\", as a POSIX host names it,
  // except for a drive's root.
  rt::Result<std::string> HostPath(const std::string& windowsPath) override {
    std::string path = windowsPath;
    if (path.size() > 3 && path.back() == '\\') path.pop_back();
    return path;
  }
  std::unique_ptr<platform::Registry> OpenVerifyRegistry(std::ostream*) override {
    return std::make_unique<win32::Win32Registry>();
  }
  rt::Result<AssociationRegistry> OpenAssociations() override {
    AssociationRegistry opened;
    opened.registry = std::make_unique<win32::Win32Registry>();
    opened.where = "the registry of this computer";
    return opened;
  }

  // The templates ship in "share" beside the program; a build tree run in
  // place finds them where the sources are.
  void SeedTemplates() {
    std::string share = rt::GetFolder(win32::OwnModulePath()) + "share";
    if (GetFileAttributesW(win32::Widen(share).c_str()) == INVALID_FILE_ATTRIBUTES) share = FullPath(SENTRUNE_SHARE_DIR);
    cli::SeedAddinFolder(env_.Files(), env_.ModuleFolder(), share);
  }

 private:
  win32::Win32Env env_;
  win32::Win32ProfileFiles profiles_;
  win32::Win32VersionResources versions_;
  std::unique_ptr<platform::TypeLibSource> typelibs_;
};

// Set by Ctrl-C while a StopRequest lives; a file watch's wait ends on it.
HANDLE StopEvent() {
  static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}

std::atomic<bool> gStop{false};

BOOL WINAPI RequestStop(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
  gStop = true;
  SetEvent(StopEvent());
  return TRUE;
}

class ConsoleStop : public StopRequest {
 public:
  ConsoleStop() {
    gStop = false;
    ResetEvent(StopEvent());
    SetConsoleCtrlHandler(RequestStop, TRUE);
  }
  ~ConsoleStop() override { SetConsoleCtrlHandler(RequestStop, FALSE); }
  ConsoleStop(const ConsoleStop&) = delete;
  ConsoleStop& operator=(const ConsoleStop&) = delete;
  bool Requested() const override { return gStop; }
};

// One argument as the C run time's parser reads it back: quoted when it has
// blanks or quotes, with the backslashes before a quote doubled.
std::string QuoteArgument(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
  std::string quoted = "\"";
  size_t backslashes = 0;
  for (char c : argument) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    quoted.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
    backslashes = 0;
    quoted += c;
  }
  quoted.append(backslashes * 2, '\\');
  return quoted + '"';
}

}  // namespace

HostHelp Win32Host::Help() {
  return {
      "Paths are Windows paths, absolute (C:\\Src\\Widgets.vbp, \\\\server\\share\\...) or\n"
      "relative to the current folder.\n\n"
      "The add-in's folder (--home) holds its INI file of options, the trace file and\n"
      "the Logs folder; by default it is %APPDATA%\\Sentrune.\n",
      "the registry of this computer, as the current user sees it.", false};
}

std::string Win32Host::DefaultHomeFolder() {
  wchar_t folder[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return "Sentrune";
  return win32::Narrow(folder) + "\\Sentrune";
}

bool Win32Host::InputIsTerminal() { return _isatty(_fileno(stdin)) != 0; }

rt::Result<std::unique_ptr<HostEnv>> Win32Host::Open(const GlobalOptions& global, const std::string& homeFolder) {
  if (!global.drives.empty() || !global.wineprefix.empty()) {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         std::string(global.drives.empty() ? "--wineprefix" : "--drive") +
                             " maps drive letters off Windows; on Windows the drives are the system's own");
  }
  auto env = std::make_unique<Win32HostEnv>(FullPath(homeFolder), global.reader == "system");
  env->SeedTemplates();
  return std::unique_ptr<HostEnv>(std::move(env));
}

rt::Result<std::unique_ptr<platform::FileWatch>> Win32Host::WatchFiles() {
  return std::unique_ptr<platform::FileWatch>(std::make_unique<win32::Win32FileWatch>(StopEvent()));
}

std::unique_ptr<StopRequest> Win32Host::CatchStop() { return std::make_unique<ConsoleStop>(); }

std::string Win32Host::CommandLine(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) line += (line.empty() ? "" : " ") + QuoteArgument(argument);
  return line;
}

}  // namespace sentrune::cli
