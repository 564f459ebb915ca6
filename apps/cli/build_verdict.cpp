#include "build_verdict.h"

#include "read_model.h"
#include "session.h"

namespace sentrune::cli {

BuildJudge::BuildJudge(Session& session, std::string buildFile, const std::string& model)
    : session_(session), buildFile_(std::move(buildFile)), model_(session.state()) {
  if (!model.empty()) modelProblem_ = ReadModelAt(session_, model, session_.ToHostPath(model), model_);
}

BuildVerdict BuildJudge::Judge(const BuildReport& report) {
  if (!report.differencesAfter) return {};
  clsParseTLB setUp(session_.state());
  const clsParseTLB* model = &model_;
  std::string problem = modelProblem_;
  if (!report.modelSetUp.empty()) {
    model = &setUp;
    problem = ReadModelAt(session_, report.modelSetUp, session_.ToHostPath(report.modelSetUp), setUp);
  }
  clsParseTLB build(session_.state());
  if (problem.empty()) problem = ReadModelAt(session_, buildFile_, session_.ToHostPath(buildFile_), build);
  if (!problem.empty()) return {.level = std::nullopt, .problem = problem};
  // Minor differences are ignored, as the add-in's own comparison ignores
  // them, so that the level agrees with the count it reported.
  return {.level = CompatibilityLevel(build.CompareDetailed(*model, true, false)), .problem = {}};
}

}  // namespace sentrune::cli
