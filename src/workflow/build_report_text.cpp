#include "workflow/build_report_text.h"

#include "runtime/vb_error.h"

namespace sentrune {
namespace {

// The steps as the developer knows them: by what they do.
std::string StepWords(const std::string& procedure) {
  constexpr struct {
    const char* procedure;
    const char* words;
  } kSteps[] = {
      {"lfncBackupComponentEX", "the backup of the old component"},
      {"lfncCompBeforeEX", "the comparison before the build"},
      {"lfncManageCompatEX", "setting up the compatibility model"},
      {"lfncCompAfterEX", "the comparison after the build"},
      {"lfncUpdateCompatEX", "the update of the compatibility model"},
      {"lfncSnapshotEX", "the project snapshot"},
      {"lfncBackupReleaseEX", "the backup of the release copy"},
      {"lfncCopyToReleaseEX", "the copy to the release folder"},
  };
  for (const auto& step : kSteps)
    if (procedure == step.procedure) return step.words;
  return "a step of the build";
}

// A step's code: 2 and 7 are the guarded copy's own answers, anything else
// an error number.
std::string CodeWords(int32_t code) {
  if (code == 2) return "a file already there was not overwritten";
  if (code == 7) return "permission was denied, so the copy was not made";
  if (code == rt::errnum::kNotATypeLibrary) return "a file holds no valid type library";
  return rt::DescribeError(code) + " (error " + std::to_string(code) + ")";
}

// A comparison that failed hands back its error number as the count.
std::string Differences(const char* when, const char* what, int32_t count) {
  if (count < 0) return std::string(what) + " could not be compared with the model: " + CodeWords(count);
  return std::string("differences ") + when + ": " + std::to_string(count);
}

}  // namespace

std::vector<std::string> DescribeBuild(const BuildReport& report) {
  std::vector<std::string> lines;
  for (const BuildReport::Copy& backup : report.backups) lines.push_back(backup.what + ": " + backup.path);
  if (report.differencesBefore)
    lines.push_back(Differences("before the build", "the old component", *report.differencesBefore));
  if (!report.modelSetUp.empty()) lines.push_back("compatibility model set up: " + report.modelSetUp);
  if (report.differencesAfter)
    lines.push_back(Differences("after the build", "the new build", *report.differencesAfter));
  if (!report.modelUpdated.empty()) lines.push_back("compatibility model updated: " + report.modelUpdated);
  if (report.historyRecorded) lines.push_back("build recorded in the project's history");
  if (report.historyError != 0)
    lines.push_back("the build could not be recorded in the project's history: " + CodeWords(report.historyError));
  if (!report.snapshotFolder.empty()) lines.push_back("snapshot: " + report.snapshotFolder);
  for (const BuildReport::OutsideFile& file : report.snapshotOutside)
    lines.push_back("snapshot placed a file from outside the project: " + file.source + " -> " + file.destination);
  if (!report.releaseCopy.empty()) lines.push_back("release copy: " + report.releaseCopy);
  // A failed backup ends only the half of the build before the compiler's
  // write, so a step before the last may have failed too.
  for (size_t i = 0; i < report.steps.size(); ++i) {
    const BuildReport::Step& step = report.steps[i];
    if (step.code == 0) continue;
    const char* how = i + 1 == report.steps.size() ? "stopped at " : "failed: ";
    lines.push_back(how + StepWords(step.procedure) + ": " + CodeWords(step.code));
  }
  return lines;
}

}  // namespace sentrune
