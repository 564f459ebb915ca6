// `sentrune fix-associations`: the association fixer on a Wine prefix's
// registry.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "commands.h"
#include "files/association_fixer.h"
#include "platform/posix/posix_env.h"
#include "platform/posix/wine_server.h"
#include "platform/posix/wine_server_registry.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "session.h"

namespace sentrune::cli {
namespace {

// The shell's FindExecutable as Windows answers it, from the prefix's own
// registry: extension -> file class -> its open command's program.
class RegistryAssociations : public platform::Processes {
 public:
  RegistryAssociations(platform::Processes& base, platform::FileSystem& files, platform::Registry& registry)
      : base_(base), files_(files), registry_(registry) {}

  rt::Result<int> Run(const std::string& commandLine) override { return base_.Run(commandLine); }
  rt::Status Start(const std::string& commandLine) override { return base_.Start(commandLine); }
  int FindExecutable(const std::string& documentPath, std::string& program) override {
    constexpr int kFileNotFound = 2, kPathNotFound = 3, kNoAssociation = 31, kFound = 33;
    if (const auto attributes = files_.GetAttributes(documentPath); !attributes.ok())
      return attributes.error().number == rt::errnum::kFileNotFound ? kFileNotFound : kPathNotFound;
    const std::string fileClass = Default(rt::GetExtension(rt::GetFileTitle(documentPath)));
    if (fileClass.empty()) return kNoAssociation;
    program = ProgramOf(Default(fileClass + "\\shell\\open\\command"));
    return program.empty() ? kNoAssociation : kFound;
  }

 private:
  std::string Default(const std::string& key) {
    const rt::Result<platform::RegValue> value = registry_.QueryValue(platform::kHkeyClassesRoot, key, "");
    if (!value.ok()) return "";
    const size_t nul = value->data.find('\0');
    return value->data.substr(0, nul);
  }
  // The program part of a command line: quoted, or up to its ".exe".
  static std::string ProgramOf(const std::string& command) {
    const std::string text = rt::Trim(command);
    if (!text.empty() && text[0] == '"') return text.substr(1, text.find('"', 1) - 1);
    const size_t exe = rt::LCase(text).find(".exe");
    return exe == std::string::npos ? text.substr(0, text.find(' ')) : text.substr(0, exe + 4);
  }

  platform::Processes& base_;
  platform::FileSystem& files_;
  platform::Registry& registry_;
};

void FixAssociations(Session& session) {
  if (!session.Ready()) return;
  auto* env = dynamic_cast<posix::PosixEnv*>(&session.state().env());
  const std::string prefix = env ? env->WinePrefix() : std::string();
  if (prefix.empty())
    return session.Fail("fix-associations needs a Wine prefix's registry: give --wineprefix DIR (no default prefix found)");
  if (posix::WineServerRunning(prefix))
    return session.Fail("the wineserver of the Wine prefix '" + prefix +
                        "' is running and would undo the changes; stop it first (wineserver -k)");
  rt::Result<std::unique_ptr<platform::Registry>> registry = posix::OpenWinePrefixRegistry(env->Files(), prefix);
  if (!registry.ok()) return session.Fail(registry.error().description);
  RegistryAssociations associations(env->Programs(), env->Files(), **registry);
  const int32_t changes = lfncFixAssociations(session.state(), **registry, &associations);
  session.out << changes << (changes == 1 ? " association" : " associations") << " changed in " << prefix << '\n';
}

}  // namespace

void AddFixAssociationsCommand(CLI::App& app, Session& session) {
  CLI::App* fix = app.add_subcommand("fix-associations", "Repair the open commands of the VB file classes");
  fix->footer(
      "Works on the registry of the Wine prefix (--wineprefix, else the default prefix), which\n"
      "must not be in use by a running wineserver. Each class whose open command differs from\n"
      "\"<program for .vbp>\" \"%1\" is offered for rewriting.");
  fix->callback([&session] { FixAssociations(session); });
}

}  // namespace sentrune::cli
