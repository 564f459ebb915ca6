#pragma once
// What one build did, in plain terms, for a host that reports it (the
// command line prints it after a build). The steps fill it as they go; it
// never influences what they do.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sentrune {

struct BuildReport {
  struct Copy {
    std::string what;  // "component backup", "release copy backup"
    std::string path;
  };
  struct Step {
    std::string procedure;  // "lfncManageCompatEX"
    int32_t code = 0;
  };
  // A source file a snapshot had to place under "_outside\" because the
  // project names it outside the project's folder.
  struct OutsideFile {
    std::string source;       // full path it was copied from
    std::string destination;  // full path inside the snapshot
  };

  std::vector<Copy> backups;
  std::string modelSetUp;  // the model lfncManageCompatEX made
  std::optional<int32_t> differencesBefore;
  std::optional<int32_t> differencesAfter;
  bool updateNeeded = false;
  std::string modelUpdated;  // the model lfncUpdateCompatEX made
  bool historyRecorded = false;
  int32_t historyError = 0;  // why the build could not be recorded
  std::string snapshotFolder;
  std::vector<OutsideFile> snapshotOutside;
  std::string releaseCopy;
  // Every step the chain ran, in order, with its code; a code other than 0
  // ended that step's half of the build.
  std::vector<Step> steps;
};

// A build of a component as the host hears of it once the add-in's steps
// after it are over.
struct BuildEnd {
  std::string project;
  std::string fileName;  // the component the IDE wrote
  int16_t result = 0;    // the IDE's: 0 when the component was written
  BuildReport report;
};

}  // namespace sentrune
