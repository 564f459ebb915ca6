#include "files/path_fixer.h"

#include <string_view>

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "verify/frm_install_details.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
using Outcome = PathFixResult::Outcome;

constexpr std::string_view kHandledKeys =
    "|reference|object|form|usercontrol|module|class|designer|propertypage|resfile32|";
constexpr const char* kErrorTitle = "modFileFunctions:Parse4ABS";

// VB's Split: every separator cuts, so n separators give n + 1 parts.
std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t found; (found = text.find(separator, start)) != std::string_view::npos;
       start = found + separator.size()) {
    parts.emplace_back(text.substr(start, found - start));
  }
  parts.emplace_back(text.substr(start));
  return parts;
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

// The backup is checked byte for byte before the original may be replaced:
// nothing short of the very bytes read will do.
bool BackedUp(AddinState& state, const OptionSet& options, const std::string& projectFile,
              const std::string& original, const std::string& backupFile) {
  if (backupFile.empty()) return false;
  if (lfncCopyFileEX(state, options, projectFile, backupFile, true, true) != 0) return false;
  const rt::Result<std::string> copy = state.files().ReadFile(backupFile);
  return copy.ok() && *copy == original;
}

// Written beside the project and renamed over it, so that a failure part way
// never leaves a truncated project file behind.
rt::Status ReplaceFile(platform::FileSystem& fs, const std::string& path, const std::string& bytes) {
  const std::string temporary = rt::GetFolder(path) + "~" + rt::GetFileTitle(path) + ".tmp";
  rt::Status status = fs.WriteFile(temporary, bytes);
  if (status) status = fs.RenameReplace(temporary, path);
  if (!status) (void)fs.DeleteFile(temporary);
  return status;
}

void ShowReport(AddinState& state, const std::vector<PathFixChange>& changes) {
  frmInstallDetails window(state);
  window.AppendText(PathFixReport(changes));
  window.Show("Full paths report.");
}

}  // namespace

std::string ProjectDriveText(const std::string& projectFile) {
  const size_t slash = projectFile.find('\\');
  if (slash == std::string::npos) return {};
  return rt::LCase(rt::Trim(std::string_view(projectFile).substr(0, slash)));
}

std::optional<std::string> FixProjectLine(const platform::FileSystem& fs, const std::string& projectFile,
                                          const std::string& drive, const std::string& line) {
  const size_t equals = line.find('=');
  if (equals == std::string::npos) return std::nullopt;
  const std::string key = rt::Trim(std::string_view(line).substr(0, equals));
  const std::string lowerKey = rt::LCase(key);
  if (kHandledKeys.find("|" + lowerKey + "|") == std::string_view::npos) return std::nullopt;

  const bool isReference = lowerKey == "reference";
  std::vector<std::string> parts = Split(rt::Trim(std::string_view(line).substr(equals + 1)),
                                         isReference ? "#" : ";");
  if (parts.size() != (isReference ? 5u : 2u)) return std::nullopt;
  std::string& pathPart = isReference ? parts[3] : parts[1];
  if (!isReference) pathPart = rt::LCase(rt::Trim(pathPart));
  // LCase keeps the length in bytes, so a prefix test equals comparing the
  // drive text's length of leading characters.
  if (!rt::LCase(pathPart).starts_with(drive)) return std::nullopt;

  const std::string relative = lfncRelativePath(fs, projectFile, pathPart);
  if (relative == pathPart) return std::nullopt;
  // Other keys are rejoined with "#", not the ";" they were read with; the
  // project files this fixer has always written look like that.
  const std::string value = isReference
                                ? parts[0] + "#" + parts[1] + "#" + parts[2] + "#" + relative + "#" + parts[4]
                                : parts[0] + "#" + relative;
  return key + "=" + value;
}

std::string PathFixReport(const std::vector<PathFixChange>& changes) {
  std::string report;
  for (const PathFixChange& change : changes) {
    report += "The line:\r\n" + change.oldLine + "\r\nHas been changed to:\r\n" + change.newLine + "\r\n\r\n";
  }
  return report;
}

PathFixResult Parse4ABS(AddinState& state, const OptionSet& options) {
  const std::optional<std::string> chosen = state.ui().OpenFile(
      "Select a project to parse.", "VB Project Files (*.vbp)|*.vbp|All Files (*.*)|*.*");
  if (!chosen || chosen->empty()) return {};
  return Parse4ABSFile(state, options, *chosen);
}

PathFixResult Parse4ABSFile(AddinState& state, const OptionSet& options, const std::string& projectFile) {
  PathFixResult result;
  result.projectFile = projectFile;
  const auto fail = [&](const rt::VbError& error) {
    result.outcome = Outcome::kFailed;
    result.errorCode = ReportTrappedError(state, error, kErrorTitle);
    return result;
  };
  platform::FileSystem& fs = state.files();
  const rt::Result<uint32_t> attributes = fs.GetAttributes(projectFile);
  if (!attributes) return fail(attributes.error());
  if (*attributes & platform::kAttrReadOnly) {
    lfncMsgBoxEX(state, "Project File is Read-Only.", mb::kInformation, "Sentrune");
    result.outcome = Outcome::kReadOnly;
    return result;
  }
  // Paths made relative to the link's folder need not hold for the file it
  // points to, and the rename that replaces the file would replace the link.
  if (*attributes & platform::kAttrReparsePoint) {
    lfncMsgBoxEX(state,
                 "Project File is a link to another file. Its paths would be made relative to the link's folder "
                 "and the link replaced by a copy, so nothing was changed: parse the file it points to.",
                 mb::kInformation, "Sentrune");
    result.outcome = Outcome::kLink;
    return result;
  }

  std::string original;
  std::vector<std::string> lines;
  const std::string drive = ProjectDriveText(projectFile);
  if (!drive.empty() && !rt::GetFolder(projectFile).empty()) {
    rt::Result<std::string> bytes = fs.ReadFile(projectFile);
    if (!bytes) return fail(bytes.error());
    original = std::move(*bytes);
    lines = Split(rt::Cp1252ToUtf8(original), "\r\n");
    for (std::string& line : lines) {
      if (std::optional<std::string> fixed = FixProjectLine(fs, projectFile, drive, line)) {
        result.changes.push_back({line, *fixed});
        line = std::move(*fixed);
      }
    }
  }
  if (result.changes.empty()) {
    lfncMsgBoxEX(state, "Project parsed. No absoulute paths found.", mb::kInformation, "Sentrune");
    result.outcome = Outcome::kNothingFound;
    return result;
  }

  ShowReport(state, result.changes);
  // A second fix within one second of the first keeps the first's backup.
  result.backupFile = UnusedName(fs, lfncMakeBackupName(fs, options, projectFile, ""));
  if (!BackedUp(state, options, projectFile, original, result.backupFile)) {
    result.outcome = Outcome::kNotBackedUp;
    return result;
  }
  if (const rt::Status replaced = ReplaceFile(fs, projectFile, rt::Utf8ToCp1252(JoinLines(lines))); !replaced)
    return fail(replaced.error());
  lfncMsgBoxEX(state, "File has changed. One or more absolute paths were found and fixed.", mb::kInformation,
               "VBP Changed");
  result.outcome = Outcome::kFixed;
  return result;
}

}  // namespace sentrune
