#include "cli_main.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <iostream>

#include "commands.h"
#include "host_platform.h"
#include "menu_help.h"
#include "session.h"

namespace sentrune::cli {
namespace {

constexpr const char* kFooter = R"(
Type libraries are read by Sentrune's own reader (--reader portable, the
default, the same on every system) or by the system's loader (--reader system,
on Windows only).

Exit status: 0 done; 1 a step could not do its work (compare: the builds differ;
each command's --help says what 1 means for it); 2 bad input: a missing file, a
folder, a file that is no project or has no type library, or bad arguments.

Examples:
  sentrune options                                 show every option
  sentrune options set ActiveX_DLL_CreateBackup Yes
  sentrune --home ./cfg options reset              write the start values again)";

void AddGlobalOptions(CLI::App& app, GlobalOptions& global, bool mapsDrives) {
  // Where drive letters are the system's own, the options stay, to be refused
  // with a reason rather than rejected as unknown.
  const std::string offWindows = mapsDrives ? "" : " (off Windows only)";
  app.add_option("--home", global.home, "The add-in's folder (options, trace, logs)")
      ->type_name("DIR");
  auto* yes = app.add_flag("--yes,-y", global.yes, "Answer Yes (or OK) to every question");
  auto* no = app.add_flag("--no,-n", global.no, "Answer No (or Cancel) to every question");
  yes->excludes(no);
  app.add_option("--drive", global.drives, "Map a drive letter to a host folder" + offWindows)
      ->type_name("X=DIR")
      ->each([](const std::string& value) {
        if (value.size() < 3 || value[1] != '=' || !std::isalpha(static_cast<unsigned char>(value[0])))
          throw CLI::ValidationError("--drive", "expected X=DIR, got '" + value + "'");
      });
  app.add_option("--wineprefix", global.wineprefix, "Wine prefix whose drives to use" + offWindows)
      ->type_name("DIR");
  app.add_option("--reader", global.reader, "Who reads type libraries (default portable)")
      ->type_name("portable|system")
      ->check(CLI::IsMember({"portable", "system"}).description(""));
}

}  // namespace

int Main(HostPlatform& host, int argc, char** argv) { return Run(host, argc, argv, std::cin, std::cout, std::cerr); }

int Run(HostPlatform& host, int argc, const char* const* argv, std::istream& in, std::ostream& out,
        std::ostream& err) {
  Session session(host, in, out, err);
  CLI::App app{"sentrune: keeps ActiveX components binary compatible and their builds safe."};
  app.set_version_flag("--version", std::string("sentrune ") + SENTRUNE_VERSION);
  app.require_subcommand(0, 1);
  // "/x" is a path, never an option, whatever the system.
  app.allow_windows_style_options(false);
  AddGlobalOptions(app, session.global, host.Help().mapsDrives);
  for (const Command& command : Commands()) {
    CLI::App& sub = *app.add_subcommand(command.name, command.help);
    command.setUp(sub, session);
    const std::string footer = sub.get_footer();
    sub.footer(footer + (footer.empty() ? "" : "\n") + ExitStatusHelp(command.name));
  }
  // Set last: a command's help would start from it.
  app.footer("\n" + host.Help().paths + kFooter + MenuHelpText());
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int status = app.exit(e, session.out, session.err);
    return status == 0 ? kExitOk : kExitBadInput;
  } catch (const std::exception& e) {
    // The core traps its own failures; anything that still arrives here is
    // reported rather than left to abort the process.
    session.err << "sentrune: " << e.what() << '\n';
    return kExitBadInput;
  }
  if (app.get_subcommands().empty()) {
    session.out << app.help();
    return kExitOk;
  }
  session.ReportFailedDatabases();
  return session.exitCode;
}

}  // namespace sentrune::cli
