#include "build_run.h"

#include <ostream>

#include "host/connect.h"
#include "host_platform.h"
#include "platform/headless/headless_ide.h"
#include "session.h"
#include "workflow/build_report_text.h"

namespace sentrune::cli {
namespace {

bool IsFile(platform::FileSystem& files, const std::string& path) {
  const rt::Result<uint32_t> attributes = files.GetAttributes(path);
  return attributes.ok() && (*attributes & platform::kAttrDirectory) == 0;
}

// The compiler's write: 0 when the build file was written.
int16_t WriteComponent(Session& session, const BuildArgs& args, const std::string& component,
                       const std::string& buildFile) {
  platform::FileSystem& files = session.state().files();
  if (!args.command.empty()) {
    const std::string commandLine = session.host().CommandLine(args.command);
    const std::optional<rt::DateTime> before =
        IsFile(files, buildFile) ? std::optional(*files.GetLastWriteTime(buildFile)) : std::nullopt;
    const rt::Result<int> status = session.state().env().Programs().Run(commandLine);
    if (!status.ok() || *status != 0) {
      session.err << "sentrune: the build command failed"
                  << (status.ok() ? " with status " + std::to_string(*status) : ": " + status.error().description)
                  << '\n';
      return 1;
    }
    const bool written = IsFile(files, buildFile) && (!before || *files.GetLastWriteTime(buildFile) != *before);
    if (!written) session.err << "sentrune: the build command left no new " << buildFile << '\n';
    return written ? 0 : 1;
  }
  rt::Status copied = files.MakeSureDirectoryPathExists(buildFile);
  if (copied.ok()) copied = files.CopyFile(component, buildFile, false);
  if (copied.ok()) copied = files.SetLastWriteTime(buildFile, session.state().env().Time().Now());
  if (!copied.ok()) {
    session.err << "sentrune: could not write " << buildFile << ": " << copied.error().description << '\n';
    return static_cast<int16_t>(copied.error().number);
  }
  return 0;
}

void PrintReport(std::ostream& out, const BuildReport& report) {
  for (const std::string& line : DescribeBuild(report)) out << "  " << line << '\n';
}

}  // namespace

void RunBuild(Session& session, const BuildArgs& args) {
  if (!session.Ready()) return;
  if (args.component.empty() == args.command.empty()) {
    session.Fail("build needs either --component FILE or -- COMMAND ARGS...");
    return;
  }
  const rt::Result<std::string> projectPath = session.ToWindowsPath(args.project);
  const rt::Result<std::string> component =
      args.component.empty() ? rt::Result<std::string>(std::string()) : session.ToWindowsPath(args.component);
  if (!projectPath.ok() || !component.ok()) {
    session.Fail((projectPath.ok() ? component.error() : projectPath.error()).description);
    return;
  }
  if (!args.component.empty() && !IsFile(session.state().files(), *component)) {
    session.Fail("no such component file: " + args.component);
    return;
  }
  const rt::Result<headless::HeadlessIde::OpenResult> opened = session.ide().Open(*projectPath);
  if (!opened.ok() || opened->projects.size() != 1) {
    session.Fail(opened.ok() ? args.project + " is a group; build one project (.vbp) at a time"
                             : opened.error().description);
    return;
  }
  const platform::ProjectPtr project = opened->projects.front();
  const std::string buildFile = project->BuildFileName();
  const std::string modelBefore = project->CompatibleOleServer();
  session.out << "Building " << project->Name() << ": " << buildFile << '\n';

  if (IsFile(session.state().files(), buildFile)) (void)session.ide().FireRequestWriteFile(project, buildFile);
  const int16_t result = WriteComponent(session, args, *component, buildFile);
  if (const rt::Status fired = session.ide().FireAfterWriteFile(project, platform::vbext_ft_Exe, buildFile, result);
      !fired.ok()) {
    session.Fail(fired.error().description);
    return;
  }
  if (project->CompatibleOleServer() != modelBefore) {
    if (const rt::Status saved = project->Save(); !saved.ok())
      session.err << "sentrune: could not save " << project->FileName() << ": " << saved.error().description << '\n';
  }

  clsProject* sink = session.connect().FindProjectSink(project->Name());
  const BuildReport report = sink ? sink->TakeBuildReport() : BuildReport{};
  PrintReport(session.out, report);
  const BuildReport::Step* last = report.EndedBy();
  if (result != 0 || (last && last->code != 0)) session.exitCode = kExitStopped;
}

}  // namespace sentrune::cli
