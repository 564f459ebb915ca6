#pragma once
// Every subcommand of the host, each added by its own file.
namespace CLI {
class App;
}

namespace sentrune::cli {

class Session;

void AddOptionsCommand(CLI::App& app, Session& session);
void AddBuildCommand(CLI::App& app, Session& session);
void AddDemoCommand(CLI::App& app, Session& session);
void AddInspectCommand(CLI::App& app, Session& session);
void AddCompareCommand(CLI::App& app, Session& session);
void AddRefsCommand(CLI::App& app, Session& session);
void AddFixPathsCommand(CLI::App& app, Session& session);
void AddSnapshotCommand(CLI::App& app, Session& session);
void AddTimesCommand(CLI::App& app, Session& session);
void AddWatchCommand(CLI::App& app, Session& session);
void AddFixAssociationsCommand(CLI::App& app, Session& session);
void AddVerifyCommand(CLI::App& app, Session& session);
void AddVerifyClassCommand(CLI::App& app, Session& session);
void AddAlignControlCommand(CLI::App& app, Session& session);
void AddDetailsCommand(CLI::App& app, Session& session);

}  // namespace sentrune::cli
