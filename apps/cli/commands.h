#pragma once
// The host's subcommands: one table of names, help lines and the functions
// that give each its arguments and its run.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sentrune {
enum class MenuCommand;
}

namespace sentrune::cli {

class Session;

struct Command {
  const char* name;
  const char* help;
  // Adds the arguments, the footer and the run to the command's own parser
  // (already named and described). Whatever the run needs from the session
  // it takes when it runs, not here.
  void (*setUp)(CLI::App& command, Session& session);
  // The item of the add-in's menu that does the same, if any.
  std::optional<MenuCommand> menuItem = std::nullopt;
};

// Every command, in the order the help lists them.
std::span<const Command> Commands();

// The last lines of a command's help: its exit statuses, the same three for
// every command, with what 1 means for this one.
std::string ExitStatusHelp(std::string_view command);

// Runs `run` over the command's arguments when the command is chosen; the
// parser fills the arguments returned here.
template <class Args>
Args& RunWith(CLI::App& command, Session& session, void (*run)(Session&, const Args&)) {
  auto args = std::make_shared<Args>();
  command.callback([&session, args, run] { run(session, *args); });
  return *args;
}

// The set-up of each command, one per cmd_*.cpp file.
void SetUpOptions(CLI::App& command, Session& session);
void SetUpBuild(CLI::App& command, Session& session);
void SetUpDemo(CLI::App& command, Session& session);
void SetUpInspect(CLI::App& command, Session& session);
void SetUpCompare(CLI::App& command, Session& session);
void SetUpRefs(CLI::App& command, Session& session);
void SetUpFixPaths(CLI::App& command, Session& session);
void SetUpSnapshot(CLI::App& command, Session& session);
void SetUpTimes(CLI::App& command, Session& session);
void SetUpHistory(CLI::App& command, Session& session);
void SetUpWatch(CLI::App& command, Session& session);
void SetUpFixAssociations(CLI::App& command, Session& session);
void SetUpVerify(CLI::App& command, Session& session);
void SetUpVerifyClass(CLI::App& command, Session& session);
void SetUpAlignControl(CLI::App& command, Session& session);
void SetUpDetails(CLI::App& command, Session& session);

}  // namespace sentrune::cli
