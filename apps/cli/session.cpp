#include "session.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "platform/console/console_ui.h"
#include "platform/ini/ini_file.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/drive_map.h"
#include "platform/posix/posix_env.h"
#include "host/addin_menu.h"
#include "host/connect.h"
#include "seed_templates.h"
#include "verify/frm_install_details.h"
#include "verify_registry.h"
#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"

namespace sentrune::cli {
namespace {

namespace fs = std::filesystem;

// The add-in's folder: --home, else the XDG configuration folder.
std::string HomeFolder(const std::string& given) {
  if (!given.empty()) return given;
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
    return std::string(config) + "/sentrune";
  return posix::HomeFolder() + "/.config/sentrune";
}

bool LooksLikeWindowsPath(const std::string& text) {
  const bool drive = text.size() >= 3 && std::isalpha(static_cast<unsigned char>(text[0])) &&
                     text[1] == ':' && (text[2] == '\\' || text[2] == '/');
  return drive || text.starts_with("\\\\");
}

console::AnswerMode AnswerModeFor(const GlobalOptions& global) {
  if (global.yes) return console::AnswerMode::kYes;
  if (global.no) return console::AnswerMode::kNo;
  // Without a terminal nobody can answer: refuse, which never overwrites.
  return isatty(STDIN_FILENO) ? console::AnswerMode::kAsk : console::AnswerMode::kNo;
}

}  // namespace

struct Session::Parts {
  std::unique_ptr<posix::PosixEnv> env;
  std::unique_ptr<console::ConsoleUi> ui;
  std::unique_ptr<portable::PortableProfileFiles> profiles;
  std::unique_ptr<portable::PortableVersionResources> versions;
  std::unique_ptr<portable::PortableTypeLibSource> typelibs;
  std::unique_ptr<AddinState> state;
  std::unique_ptr<headless::HeadlessIde> ide;
  std::unique_ptr<Connect> connect;

  ~Parts() {
    if (connect) connect->AddinInstance_OnDisconnection();
  }
};

Session::Session(std::istream& in, std::ostream& out, std::ostream& err)
    : out(out), err(err), in_(in) {}

Session::~Session() = default;

void Session::Fail(const std::string& message) {
  err << "sentrune: " << message << '\n';
  exitCode = kExitBadInput;
}

rt::Status Session::Open() {
  if (parts_) return {};
  posix::PosixEnvOptions options;
  std::error_code error;
  const fs::path home = fs::absolute(HomeFolder(global.home), error);
  if (error || (fs::create_directories(home, error), error) || !fs::is_directory(home)) {
    return rt::MakeError(rt::errnum::kPathNotFound,
                         "cannot create the add-in's folder '" + home.string() + "'");
  }
  options.homeHostDir = home.string();
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
  auto parts = std::make_unique<Parts>();
  parts->env = std::make_unique<posix::PosixEnv>(std::move(options));
  SeedAddinFolder(*parts->env);
  parts->ui = std::make_unique<console::ConsoleUi>(AnswerModeFor(global), in_, out, err);
  parts->profiles = std::make_unique<portable::PortableProfileFiles>(parts->env->Files());
  parts->versions = std::make_unique<portable::PortableVersionResources>(parts->env->Files());
  parts->typelibs = std::make_unique<portable::PortableTypeLibSource>(parts->env->Files());
  parts->state = std::make_unique<AddinState>(Platform{*parts->env, *parts->ui, *parts->profiles,
                                                       *parts->versions, *parts->typelibs});
  parts->ide = std::make_unique<headless::HeadlessIde>(parts->env->Files(), parts->typelibs.get());
  parts->connect = std::make_unique<Connect>(*parts->state);
  parts->connect->ShowDiagnostics = [env = parts->env.get()](Connect& connect) {
    const std::unique_ptr<platform::Registry> registry = OpenVerifyRegistry(*env, nullptr);
    frmInstallDetails(connect.state()).ShowDiagnostics(registry.get());
  };
  // The headless IDE's "Add-Ins" bar carries the menu as the IDE's would;
  // on the command line each item is a command of its own.
  parts->connect->SetMenu(std::make_unique<AddinMenuModel>(MenuActions{}));
  parts->connect->AddinInstance_Initialize();
  parts->connect->AddinInstance_OnConnection(*parts->ide);
  parts_ = std::move(parts);
  return {};
}

bool Session::Ready() {
  if (const rt::Status opened = Open(); !opened.ok()) {
    Fail(opened.error().description);
    return false;
  }
  return true;
}

AddinState& Session::state() { return *parts_->state; }

OptionsHandler& Session::options() { return *parts_->connect->options(); }

Connect& Session::connect() { return *parts_->connect; }

headless::HeadlessIde& Session::ide() { return *parts_->ide; }

rt::Result<std::string> Session::ToWindowsPath(const std::string& argument) {
  if (LooksLikeWindowsPath(argument)) return argument;
  const std::optional<std::string> windows = parts_->env->Files().Drives().HostToWindows(argument);
  if (!windows) {
    return rt::MakeError(rt::errnum::kPathNotFound,
                         "'" + argument + "' lies on no mapped drive (see --drive)");
  }
  return *windows;
}

std::string Session::ToHostPath(const std::string& windowsPath) {
  const rt::Result<std::string> host = parts_->env->Files().HostPath(windowsPath);
  return host.ok() ? *host : windowsPath;
}

}  // namespace sentrune::cli
