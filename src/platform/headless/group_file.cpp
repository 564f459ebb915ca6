#include "platform/headless/group_file.h"

#include "platform/headless/line_file.h"
#include "platform/headless/project_paths.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::headless {

rt::Result<std::vector<GroupMember>> ReadGroupFile(const platform::FileSystem& files,
                                                   const std::string& fileName) {
  const auto bytes = files.ReadFile(fileName);
  if (!bytes) return bytes.error();
  const LineFile lines = LineFile::Parse(*bytes);
  const auto& all = lines.Lines();
  if (all.empty() || !rt::UCase(all.front().text).starts_with("VBGROUP"))
    return rt::MakeError(rt::errnum::kPathFileAccessError,
                         "'" + fileName + "' is not a valid group file: it does not begin with VBGROUP");
  std::vector<GroupMember> members;
  const std::string folder = rt::GetFolder(fileName);
  for (const RawLine& line : all) {
    const auto pair = SplitKeyValue(line.text);
    if (!pair) continue;
    const bool startup = rt::IEquals(pair->key, "StartupProject");
    if (startup || rt::IEquals(pair->key, "Project"))
      members.push_back({ResolveAgainst(folder, rt::Cp1252ToUtf8(pair->value)), startup});
  }
  return members;
}

}  // namespace sentrune::headless
