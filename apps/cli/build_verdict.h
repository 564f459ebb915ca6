#pragma once
// How a build stands against the compatibility model the add-in compared it
// with after the build, judged as `sentrune compare` judges.
#include <optional>
#include <string>

#include "typelib/parse_tlb.h"
#include "typelib/tlb_difference.h"
#include "workflow/build_report.h"

namespace sentrune::cli {

class Session;

struct BuildVerdict {
  std::optional<CompatLevel> level;  // none when there was nothing to judge
  std::string problem;               // why a comparison that ran cannot be judged, naming the file
};

class BuildJudge {
 public:
  // Reads the project's model before the steps after the build run: renewing
  // the model may write a copy of the build under the model's very name.
  BuildJudge(Session& session, std::string buildFile, const std::string& model);

  // The verdict on the comparison the steps made after the build, if they
  // made one: against the model they set up from the build, or else the
  // one read before they ran.
  BuildVerdict Judge(const BuildReport& report);

 private:
  Session& session_;
  std::string buildFile_;
  clsParseTLB model_;
  std::string modelProblem_;
};

}  // namespace sentrune::cli
