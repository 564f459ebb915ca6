#include "workflow/build_report_text.h"

namespace sentrune {

std::vector<std::string> DescribeBuild(const BuildReport& report) {
  std::vector<std::string> lines;
  for (const BuildReport::Copy& backup : report.backups) lines.push_back(backup.what + ": " + backup.path);
  if (report.differencesBefore)
    lines.push_back("differences before the build: " + std::to_string(*report.differencesBefore));
  if (!report.modelSetUp.empty()) lines.push_back("compatibility model set up: " + report.modelSetUp);
  if (report.differencesAfter)
    lines.push_back("differences after the build: " + std::to_string(*report.differencesAfter));
  if (!report.modelUpdated.empty()) lines.push_back("compatibility model updated: " + report.modelUpdated);
  if (report.historyRecorded) lines.push_back("build recorded in the project's history");
  if (!report.snapshotFolder.empty()) lines.push_back("snapshot: " + report.snapshotFolder);
  for (const BuildReport::OutsideFile& file : report.snapshotOutside)
    lines.push_back("snapshot placed a file from outside the project: " + file.source + " -> " + file.destination);
  if (!report.releaseCopy.empty()) lines.push_back("release copy: " + report.releaseCopy);
  if (const BuildReport::Step* last = report.EndedBy(); last && last->code != 0)
    lines.push_back("stopped: " + last->procedure + " returned " + std::to_string(last->code));
  return lines;
}

}  // namespace sentrune
