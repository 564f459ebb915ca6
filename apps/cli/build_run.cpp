#include "build_run.h"

#include <algorithm>
#include <ostream>

#include "build_verdict.h"
#include "host/connect.h"
#include "host_platform.h"
#include "open_project.h"
#include "read_model.h"
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
    if (!written) session.err << "sentrune: the build command left no new " << session.ToHostPath(buildFile) << '\n';
    return written ? 0 : 1;
  }
  rt::Status copied = files.MakeSureDirectoryPathExists(buildFile);
  if (copied.ok()) copied = files.CopyFile(component, buildFile, false);
  if (copied.ok()) copied = files.SetLastWriteTime(buildFile, session.state().env().Time().Now());
  if (!copied.ok()) {
    session.err << "sentrune: could not write " << session.ToHostPath(buildFile) << ": "
                << copied.error().description << '\n';
    return static_cast<int16_t>(copied.error().number);
  }
  return 0;
}

void PrintReport(std::ostream& out, const BuildReport& report, const BuildVerdict& verdict) {
  for (const std::string& line : DescribeBuild(report)) out << "  " << line << '\n';
  if (verdict.level) out << "Compatibility: " << CompatLevelName(*verdict.level) << '\n';
}

// A build that went wrong, or broke what --fail-on guards, ends with 1.
void Conclude(Session& session, const BuildArgs& args, int16_t written, const BuildReport& report,
              const BuildVerdict& verdict) {
  const bool stepFailed =
      std::ranges::any_of(report.steps, [](const BuildReport::Step& step) { return step.code != 0; });
  const bool beforeFailed = report.differencesBefore && *report.differencesBefore < 0;
  if (written != 0 || stepFailed || beforeFailed || report.historyError != 0) session.exitCode = kExitStopped;
  if (!verdict.problem.empty()) session.Stop(verdict.problem);
  if (args.failOn.empty()) return;
  if (!verdict.level) {
    if (verdict.problem.empty())
      session.Stop(args.project + ": --fail-on: the build was not compared with a compatibility model");
    return;
  }
  const bool fails = args.failOn == "incompatible" ? *verdict.level == CompatLevel::kIncompatible
                                                   : *verdict.level != CompatLevel::kIdentical;
  if (fails)
    session.Stop(args.project + ": the build is " + CompatLevelName(*verdict.level) +
                 " with its compatibility model (--fail-on " + args.failOn + ")");
}

// A stand-in for a component with interfaces must have a type library,
// which the add-in's steps compare and keep.
bool CheckComponent(Session& session, const BuildArgs& args, const platform::VBProject& project,
                    const std::string& component) {
  if (project.Type() == platform::vbext_pt_StandardExe) return true;
  clsParseTLB model(session.state());
  const std::string problem = ReadModelAt(session, component, args.component, model);
  if (!problem.empty()) session.Fail(problem);
  return problem.empty();
}

}  // namespace

void RunBuild(Session& session, const BuildArgs& args) {
  if (!session.Ready()) return;
  if (args.component.empty() == args.command.empty()) {
    session.Fail("build needs either --component FILE or -- COMMAND ARGS...");
    return;
  }
  const rt::Result<std::string> component =
      args.component.empty() ? rt::Result<std::string>(std::string()) : session.ExistingFile(args.component);
  if (!component.ok()) return session.Fail(component.error().description);
  const platform::ProjectPtr project = OpenOneProject(session, args.project);
  if (!project || (!args.component.empty() && !CheckComponent(session, args, *project, *component))) return;
  const std::string buildFile = project->BuildFileName();
  const std::string modelBefore = project->CompatibleOleServer();
  session.out << "Building " << project->Name() << ": " << buildFile << '\n';

  if (IsFile(session.state().files(), buildFile)) (void)session.ide().FireRequestWriteFile(project, buildFile);
  const int16_t result = WriteComponent(session, args, *component, buildFile);
  BuildJudge judge(session, buildFile, modelBefore);
  if (const rt::Status fired = session.ide().FireAfterWriteFile(project, platform::vbext_ft_Exe, buildFile, result);
      !fired.ok()) {
    session.Stop(fired.error().description);
    return;
  }
  if (project->CompatibleOleServer() != modelBefore) {
    if (const rt::Status saved = project->Save(); !saved.ok())
      session.Stop("could not save " + args.project + ": " + saved.error().description);
  }

  clsProject* sink = session.connect().FindProjectSink(project->Name());
  const BuildReport report = sink ? sink->TakeBuildReport() : BuildReport{};
  const BuildVerdict verdict = judge.Judge(report);
  PrintReport(session.out, report, verdict);
  Conclude(session, args, result, report, verdict);
}

}  // namespace sentrune::cli
