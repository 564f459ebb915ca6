#include "verify/verify_template.h"

#include <optional>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "typelib/parse_tlb.h"
#include "verify/c_verify_installation.h"

namespace sentrune {
namespace {

constexpr const char* kCrLf = "\r\n";

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The built component of the open project whose file the reference names,
// when that component exists; empty otherwise.
std::string BuiltComponentOf(AddinState& state, const std::string& projectFile,
                             const std::vector<platform::ProjectPtr>& projects) {
  for (const platform::ProjectPtr& open : projects) {
    if (!open || rt::LCase(open->FileName()) != rt::LCase(projectFile)) continue;
    const std::string built = open->BuildFileName();
    const rt::Result<uint32_t> attributes = state.files().GetAttributes(built);
    if (!built.empty() && attributes && (*attributes & platform::kAttrDirectory) == 0) return built;
  }
  return {};
}

// The path a project reference stands for, after asking; nothing when the
// user skips it or no built file can be found.
std::optional<std::string> ResolveProjectReference(AddinState& state, const std::string& name,
                                                   const std::string& projectFile,
                                                   const std::vector<platform::ProjectPtr>& projects) {
  const int answer = lfncMsgBoxEX(
      state,
      "Reference to project '" + name + "' detected." + kCrLf +
          "Click 'Yes' to extract compiled component's filename. Click 'No' to skip this reference.",
      platform::mb::kYesNo + platform::mb::kInformation, "Project Reference Detected");
  if (answer != platform::mb::kYes) return std::nullopt;
  std::string built = BuiltComponentOf(state, projectFile, projects);
  if (built.empty()) {
    lfncMsgBoxEX(state, "Reference '" + name + "' will be skipped", platform::mb::kInformation,
                 "Project Reference Detected");
    return std::nullopt;
  }
  return built;
}

bool IsFiltered(const OptionSet& options, const std::string& lowerPath) {
  if (Contains(lowerPath, "msvbvm60.dll") || Contains(lowerPath, "msvbvm50.dll")) return true;
  const std::string title = rt::GetFileTitle(TypeLibFilePath(lowerPath));
  return !title.empty() && Contains(rt::LCase(options.FilteredReferenceList), "|" + title + "|");
}

std::optional<VerifyBlock> ReadBlock(AddinState& state, const std::string& name, const std::string& fullPath) {
  clsParseTLB model(state);
  if (model.ParseTypeLib(fullPath) != 0) return std::nullopt;
  const std::string componentName = name.empty() ? rt::GetFileTitle(TypeLibFilePath(fullPath)) : name;
  return VerifyBlock{componentName, model.GUID(), model.TLBVersionString(), model.FileVersionString(), fullPath};
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

bool StartsWithWord(const std::string& line, const std::string& word) {
  return line.size() >= word.size() && rt::IEquals(std::string_view(line).substr(0, word.size()), word) &&
         (line.size() == word.size() || line[word.size()] == ' ' || line[word.size()] == '=');
}

// The index just after the header block of a saved module ("VERSION ..."
// then nested BEGIN ... END), 0 when there is none.
size_t HeaderEnd(const std::vector<std::string>& lines) {
  if (lines.empty() || !StartsWithWord(lines[0], "VERSION")) return 0;
  int depth = 0;
  for (size_t i = 1; i < lines.size(); ++i) {
    const std::string word = rt::Trim(lines[i]);
    if (StartsWithWord(word, "Begin")) ++depth;
    if (rt::IEquals(word, "End") && --depth <= 0) return i + 1;
  }
  return 1;
}

}  // namespace

ReferenceScan ScanReferences(AddinState& state, const OptionSet& options, platform::VBProject& project,
                             const std::vector<platform::ProjectPtr>& projects) {
  ReferenceScan scan;
  for (const std::shared_ptr<platform::Reference>& reference : project.References()) {
    const std::string name = reference->Name().value_or("");
    if (reference->IsBroken().value_or(false)) {
      lfncMsgBoxEX(state, "Reference to '" + name + "' is broken." + kCrLf + "This reference will be skipped.",
                   platform::mb::kInformation, "Broken Reference Detected");
      continue;
    }
    std::string fullPath = reference->FullPath().value_or("");
    if (reference->Type().value_or(platform::vbext_rk_TypeLib) == platform::vbext_rk_Project) {
      const std::optional<std::string> built = ResolveProjectReference(state, name, fullPath, projects);
      if (!built) continue;
      fullPath = *built;
    }
    const std::string lowerPath = rt::LCase(fullPath);
    if (IsFiltered(options, lowerPath)) continue;
    if (rt::GetFileTitle(TypeLibFilePath(lowerPath)) == "tlbinf32.dll") {
      scan.hasTlbInf = true;
      continue;
    }
    if (fullPath.empty()) continue;
    if (std::optional<VerifyBlock> block = ReadBlock(state, name, fullPath)) scan.blocks.push_back(std::move(*block));
  }
  return scan;
}

std::string VbStringLiteral(const std::string& text) { return "\"" + rt::Replace(text, "\"", "\"\"") + "\""; }

std::vector<std::string> VerifyBlockLines(const VerifyBlock& block) {
  return {
      "sCompName = " + VbStringLiteral(block.componentName),
      "RaiseEvent BeforeVerify(sCompName, bAborted)",
      "If bAborted = False Then",
      "lErrorCode = ProcessItem(ComponentName:= sCompName, _",
      "GUID:=" + VbStringLiteral(block.guid) + ", _",
      "MinTLBVersion:=" + VbStringLiteral(block.tlbVersion) + ", _",
      "MinFileVersion:=" + VbStringLiteral(block.fileVersion) + ", _",
      "FullPath:=" + VbStringLiteral(block.fullPath) + ")",
      "RaiseEvent AfterVerify(sCompName, lErrorCode, bAborted)",
      "End If",
  };
}

std::string GenerateVerifyClass(const std::string& templateText, const std::vector<VerifyBlock>& blocks,
                                const std::string& className) {
  std::string calls;
  for (const VerifyBlock& block : blocks) {
    for (const std::string& line : VerifyBlockLines(block)) calls += (calls.empty() ? "" : kCrLf) + line;
  }
  std::string text = rt::Replace(templateText, "|||", calls);
  text = SetModuleAttribute(text, "VB_Name", VbStringLiteral(className));
  text = SetModuleAttribute(text, "VB_Creatable", "False");
  return SetModuleAttribute(text, "VB_Exposed", "False");
}

std::string SetModuleAttribute(const std::string& text, const std::string& name, const std::string& value) {
  std::vector<std::string> lines = SplitLines(text);
  const std::string key = "Attribute " + name;
  const std::string line = key + " = " + value;
  bool replaced = false;
  for (std::string& existing : lines) {
    if (!StartsWithWord(existing, key)) continue;
    existing = line;
    replaced = true;
    break;
  }
  if (!replaced) {
    size_t at = HeaderEnd(lines);
    while (at < lines.size() && StartsWithWord(lines[at], "Attribute")) ++at;
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), line);
  }
  std::string out;
  for (const std::string& each : lines) out += each + kCrLf;
  if (!text.empty() && text.back() != '\n' && !out.empty()) out.resize(out.size() - 2);
  return out;
}

}  // namespace sentrune
