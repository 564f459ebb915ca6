#include "posix_host.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "platform/ini/ini_file.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/drive_map.h"
#include "platform/posix/file_watch_posix.h"
#include "platform/posix/posix_env.h"
#include "platform/posix/wine_server.h"
#include "platform/posix/wine_server_registry.h"
#include "platform/tlb/typelib_source_portable.h"
#include "posix_associations.h"
#include "seed_templates.h"

namespace sentrune::cli {
namespace {

namespace fs = std::filesystem;

class PosixHostEnv : public HostEnv {
 public:
  explicit PosixHostEnv(posix::PosixEnvOptions options) : env_(std::move(options)) {}

  platform::Env& Env() override { return env_; }
  platform::ProfileFiles& Profiles() override { return profiles_; }
  platform::VersionResources& Versions() override { return versions_; }
  platform::TypeLibSource& TypeLibs() override { return typelibs_; }
  std::optional<std::string> WindowsPath(const std::string& hostPath) override {
    return env_.Files().Drives().HostToWindows(hostPath);
  }
  rt::Result<std::string> HostPath(const std::string& windowsPath) override {
    return env_.Files().HostPath(windowsPath);
  }
  std::unique_ptr<platform::Registry> OpenVerifyRegistry(std::ostream* note) override;
  rt::Result<AssociationRegistry> OpenAssociations() override;

  // The template files ship in the folder the program was built with; no
  // drive covering it means no templates.
  void SeedTemplates() {
    const std::optional<std::string> share = WindowsPath(SENTRUNE_SHARE_DIR);
    if (share && !env_.ModuleFolder().empty()) cli::SeedAddinFolder(env_.Files(), env_.ModuleFolder(), *share);
  }

 private:
  posix::PosixEnv env_;
  portable::PortableProfileFiles profiles_{env_.Files()};
  portable::PortableVersionResources versions_{env_.Files()};
  portable::PortableTypeLibSource typelibs_{env_.Files()};
};

std::unique_ptr<platform::Registry> PosixHostEnv::OpenVerifyRegistry(std::ostream* note) {
  const std::string& prefix = env_.WinePrefix();
  std::error_code error;
  if (prefix.empty() || !fs::is_directory(prefix, error)) {
    if (note) *note << "sentrune: no Wine prefix: every component reads as not registered\n";
    return nullptr;
  }
  rt::Result<std::unique_ptr<platform::Registry>> registry = posix::OpenWinePrefixRegistry(env_.Files(), prefix);
  if (!registry) {
    if (note) *note << "sentrune: no registry: " << registry.error().description << '\n';
    return nullptr;
  }
  return std::move(*registry);
}

rt::Result<AssociationRegistry> PosixHostEnv::OpenAssociations() {
  const std::string& prefix = env_.WinePrefix();
  if (prefix.empty()) {
    return rt::MakeError(rt::errnum::kPathNotFound, "fix-associations needs a Wine prefix's registry: "
                                                    "give --wineprefix DIR (no default prefix found)");
  }
  if (posix::WineServerRunning(prefix)) {
    return rt::MakeError(rt::errnum::kPermissionDenied,
                         "the wineserver of the Wine prefix '" + prefix +
                             "' is running and would undo the changes; stop it first (wineserver -k)");
  }
  rt::Result<std::unique_ptr<platform::Registry>> registry = posix::OpenWinePrefixRegistry(env_.Files(), prefix);
  if (!registry.ok()) return registry.error();
  AssociationRegistry opened;
  opened.registry = std::move(*registry);
  opened.programs = std::make_unique<PrefixAssociations>(env_.Programs(), env_.Files(), *opened.registry);
  opened.where = prefix;
  return opened;
}

volatile std::sig_atomic_t gStop = 0;

void RequestStop(int) { gStop = 1; }

// Without SA_RESTART a signal also cuts a wait short.
class StopSignals : public StopRequest {
 public:
  StopSignals() {
    gStop = 0;
    struct sigaction action {};
    action.sa_handler = RequestStop;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &oldInt_);
    sigaction(SIGTERM, &action, &oldTerm_);
  }
  ~StopSignals() override {
    sigaction(SIGINT, &oldInt_, nullptr);
    sigaction(SIGTERM, &oldTerm_, nullptr);
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  bool Requested() const override { return gStop != 0; }

 private:
  struct sigaction oldInt_ {};
  struct sigaction oldTerm_ {};
};

}  // namespace

HostHelp PosixHost::Help() {
  return {
      "Paths may be given as host paths (~/src/Widgets.vbp) or as Windows paths\n"
      "(C:\\Src\\Widgets.vbp); drive letters map to host folders as Wine maps them: Z: is\n"
      "/, a Wine prefix adds its drives, --drive adds or overrides one.\n\n"
      "The add-in's folder (--home) holds its INI file of options, the trace file and\n"
      "the Logs folder; by default it is $XDG_CONFIG_HOME/sentrune (~/.config/sentrune).\n",
      "the registry of the Wine prefix (--wineprefix, else $WINEPREFIX or ~/.wine),\n"
      "which must not be in use by a running wineserver when it is changed.",
      true};
}

std::string PosixHost::DefaultHomeFolder() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
    return std::string(config) + "/sentrune";
  return posix::HomeFolder() + "/.config/sentrune";
}

bool PosixHost::InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

rt::Result<std::unique_ptr<HostEnv>> PosixHost::Open(const GlobalOptions& global, const std::string& homeFolder) {
  if (global.reader == "system") {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "--reader system needs Windows' own type library loader; "
                         "off Windows only --reader portable is offered");
  }
  posix::PosixEnvOptions options;
  options.homeHostDir = homeFolder;
  if (!global.wineprefix.empty() && !fs::is_directory(global.wineprefix)) {
    return rt::MakeError(rt::errnum::kPathNotFound,
                         "--wineprefix: no such folder '" + global.wineprefix + "'");
  }
  options.wineprefix = global.wineprefix;
  for (const std::string& drive : global.drives) {
    const std::string folder = drive.substr(2);
    if (!fs::is_directory(folder)) {
      return rt::MakeError(rt::errnum::kPathNotFound,
                           "--drive " + drive + ": no such folder '" + folder + "'");
    }
    options.drives.emplace_back(drive[0], folder);
  }
  auto env = std::make_unique<PosixHostEnv>(std::move(options));
  env->SeedTemplates();
  return std::unique_ptr<HostEnv>(std::move(env));
}

rt::Result<std::unique_ptr<platform::FileWatch>> PosixHost::WatchFiles() {
  rt::Result<std::unique_ptr<posix::InotifyFileWatch>> watch = posix::InotifyFileWatch::Create();
  if (!watch.ok()) return watch.error();
  return std::unique_ptr<platform::FileWatch>(std::move(*watch));
}

std::unique_ptr<StopRequest> PosixHost::CatchStop() { return std::make_unique<StopSignals>(); }

std::string PosixHost::CommandLine(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += '\'';
    for (char c : argument) line += c == '\'' ? std::string("'\\''") : std::string(1, c);
    line += '\'';
  }
  return line;
}

}  // namespace sentrune::cli
