#include "session.h"

#include <cctype>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "host/addin_menu.h"
#include "host/connect.h"
#include "host_platform.h"
#include "platform/console/console_ui.h"
#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"
#include "tracking/sqlite_image.h"
#include "verify/frm_install_details.h"

namespace sentrune::cli {
namespace {

namespace fs = std::filesystem;

bool LooksLikeWindowsPath(const std::string& text) {
  const bool drive = text.size() >= 3 && std::isalpha(static_cast<unsigned char>(text[0])) &&
                     text[1] == ':' && (text[2] == '\\' || text[2] == '/');
  return drive || text.starts_with("\\\\");
}

console::AnswerMode AnswerModeFor(const GlobalOptions& global, HostPlatform& host) {
  if (global.yes) return console::AnswerMode::kYes;
  if (global.no) return console::AnswerMode::kNo;
  // Without a terminal nobody can answer: refuse, which never overwrites.
  return host.InputIsTerminal() ? console::AnswerMode::kAsk : console::AnswerMode::kNo;
}

}  // namespace

struct Session::Parts {
  std::unique_ptr<HostEnv> host;
  std::unique_ptr<console::ConsoleUi> ui;
  std::unique_ptr<AddinState> state;
  std::unique_ptr<headless::HeadlessIde> ide;
  std::unique_ptr<Connect> connect;

  ~Parts() {
    if (connect) connect->AddinInstance_OnDisconnection();
  }
};

Session::Session(HostPlatform& host, std::istream& in, std::ostream& out, std::ostream& err)
    : out(out), err(err), host_(host), in_(in) {}

Session::~Session() = default;

void Session::Fail(const std::string& message) {
  err << "sentrune: " << message << '\n';
  exitCode = kExitBadInput;
}

void Session::Stop(const std::string& message) {
  err << "sentrune: " << message << '\n';
  if (exitCode != kExitBadInput) exitCode = kExitStopped;
}

void Session::ReportFailedDatabases() {
  if (!parts_) return;
  for (const auto& [file, error] : state().failedDatabases) {
    Stop(ToHostPath(file) + (error.number == jeterr::kUnrecognizedFormat
                                 ? ": the tracking database cannot be read (damaged, or no database); it "
                                   "was left as it is"
                                 : ": the tracking database could not be used: " + error.description));
  }
}

rt::Status Session::Open() {
  if (parts_) return {};
  std::error_code error;
  const fs::path home = fs::absolute(global.home.empty() ? host_.DefaultHomeFolder() : global.home, error);
  if (error || (fs::create_directories(home, error), error) || !fs::is_directory(home)) {
    return rt::MakeError(rt::errnum::kPathNotFound,
                         "cannot create the add-in's folder '" + home.string() + "'");
  }
  rt::Result<std::unique_ptr<HostEnv>> opened = host_.Open(global, home.string());
  if (!opened.ok()) return opened.error();
  auto parts = std::make_unique<Parts>();
  parts->host = std::move(*opened);
  platform::Env& env = parts->host->Env();
  parts->ui = std::make_unique<console::ConsoleUi>(AnswerModeFor(global, host_), in_, out, err);
  HostEnv& system = *parts->host;
  parts->state = std::make_unique<AddinState>(
      Platform{env, *parts->ui, system.Profiles(), system.Versions(), system.TypeLibs()});
  parts->ide = std::make_unique<headless::HeadlessIde>(env.Files(), &system.TypeLibs());
  parts->connect = std::make_unique<Connect>(*parts->state);
  parts->connect->ShowDiagnostics = [host = parts->host.get()](Connect& connect) {
    const std::unique_ptr<platform::Registry> registry = host->OpenVerifyRegistry(nullptr);
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

HostEnv& Session::hostEnv() { return *parts_->host; }

AddinState& Session::state() { return *parts_->state; }

OptionsHandler& Session::options() { return *parts_->connect->options(); }

Connect& Session::connect() { return *parts_->connect; }

headless::HeadlessIde& Session::ide() { return *parts_->ide; }

rt::Result<std::string> Session::ToWindowsPath(const std::string& argument) {
  if (LooksLikeWindowsPath(argument)) return argument;
  const std::optional<std::string> windows = parts_->host->WindowsPath(argument);
  if (!windows) {
    return rt::MakeError(rt::errnum::kPathNotFound,
                         "'" + argument + "' lies on no mapped drive (see --drive)");
  }
  return *windows;
}

rt::Result<std::string> Session::ExistingFile(const std::string& argument) {
  rt::Result<std::string> path = ToWindowsPath(argument);
  if (!path.ok()) return path;
  const rt::Result<uint32_t> attributes = state().files().GetAttributes(*path);
  if (!attributes.ok()) {
    const int32_t number = attributes.error().number;
    const bool missing = number == rt::errnum::kFileNotFound || number == rt::errnum::kPathNotFound;
    return rt::MakeError(number, argument + ": " + (missing ? "no such file" : attributes.error().description));
  }
  if (*attributes & platform::kAttrDirectory)
    return rt::MakeError(rt::errnum::kPathFileAccessError, argument + ": is a folder");
  return path;
}

std::string Session::ToHostPath(const std::string& windowsPath) {
  const rt::Result<std::string> host = parts_->host->HostPath(windowsPath);
  return host.ok() ? *host : windowsPath;
}

}  // namespace sentrune::cli
