// `sentrune compare`: the viewer's comparison of a new build (A) with its
// model (B), with a verdict a build script can act on.
#include <nlohmann/json.hpp>
#include <ostream>

#include "commands.h"
#include "read_model.h"
#include "runtime/text.h"
#include "session.h"
#include "typelib/frm_tlb_info.h"
#include "typelib/parse_tlb.h"
#include "typelib/tlb_json.h"

namespace sentrune::cli {
namespace {

struct CompareArgs {
  std::string fileA;
  std::string fileB;
  bool ignoreMinor = false;
  bool noIgnoreMinor = false;
  bool details = false;
  bool json = false;
  std::string failOn = "any";
};

void PrintText(Session& session, const std::vector<TlbDifference>& differences, CompatLevel level) {
  session.out << differences.size() << " Differences Found.\n";
  for (const TlbDifference& d : differences) session.out << "--> " << ForTerminal(d.text) << '\n';
  session.out << "Compatibility: " << CompatLevelName(level) << '\n';
}

void PrintJson(Session& session, const std::vector<TlbDifference>& differences, CompatLevel level) {
  nlohmann::ordered_json json;
  json["count"] = differences.size();
  json["level"] = CompatLevelName(level);
  json["differences"] = DifferencesJson(differences);
  session.out << json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void Compare(Session& session, const CompareArgs& args) {
  if (!session.Ready()) return;
  clsParseTLB a(session.state());
  clsParseTLB b(session.state());
  if (!ReadModel(session, args.fileA, a) || !ReadModel(session, args.fileB, b)) return;
  bool ignoreMinor = frmTLBInfo::StoredIgnoreMinor(session.options());
  if (args.ignoreMinor) ignoreMinor = true;
  if (args.noIgnoreMinor) ignoreMinor = false;
  const bool details = args.details || frmTLBInfo::StoredShowDetails(session.options());
  const std::vector<TlbDifference> differences = a.CompareDetailed(b, ignoreMinor, details);
  const CompatLevel level = CompatibilityLevel(differences);
  if (args.json) {
    PrintJson(session, differences, level);
  } else {
    PrintText(session, differences, level);
  }
  const bool fails = args.failOn == "incompatible" ? level == CompatLevel::kIncompatible : !differences.empty();
  session.exitCode = fails ? kExitStopped : kExitOk;
}

}  // namespace

void SetUpCompare(CLI::App& command, Session& session) {
  command.footer(
      "Lists what the model has and the build lacks, then what the build adds, and judges\n"
      "the build: identical, compatible (it only adds, or differs in the library's help\n"
      "string or version) or incompatible. Defaults for --ignore-minor and --details are\n"
      "the comparison viewer's stored check marks.");
  CompareArgs& args = RunWith(command, session, Compare);
  command.add_option("a", args.fileA, "The new build")->required();
  command.add_option("b", args.fileB, "The model to compare with")->required();
  auto* ignore = command.add_flag("--ignore-minor", args.ignoreMinor, "Skip the library's help string and version");
  command.add_flag("--no-ignore-minor", args.noIgnoreMinor, "Compare the library's help string and version")
      ->excludes(ignore);
  command.add_flag("--details", args.details, "Show both values of library-level differences");
  command.add_flag("--json", args.json,
                   "Print {count, level, differences} as JSON: each difference with its pass, item\n"
                   "(library, enum, record, class), name, member, change (onlyInA, onlyInB, guid, value,\n"
                   "help), the values a and b of a change, and the message");
  command.add_option("--fail-on", args.failOn, "What makes the exit status 1")
      ->check(CLI::IsMember({"any", "incompatible"}))
      ->type_name("any|incompatible");
}

}  // namespace sentrune::cli
