#include "platform/headless/component_kinds.h"

#include <array>

#include "platform/headless/line_file.h"
#include "platform/headless/project_paths.h"
#include "platform/ide.h"
#include "runtime/text.h"

namespace sentrune::headless {
namespace {

using namespace platform;

constexpr std::array<ComponentKind, 9> kKinds{{
    {"Form", ".frm", vbext_ct_VBForm, vbext_ft_Form, false, false, true, ".frx"},
    {"Module", ".bas", vbext_ct_StdModule, vbext_ft_Module, true, false, true, ""},
    {"Class", ".cls", vbext_ct_ClassModule, vbext_ft_Class, true, false, true, ""},
    {"UserControl", ".ctl", vbext_ct_UserControl, vbext_ft_UserControl, false, false, true, ".ctx"},
    {"PropertyPage", ".pag", vbext_ct_PropPage, vbext_ft_PropertyPage, false, false, true, ".pgx"},
    {"UserDocument", ".dob", vbext_ct_DocObject, vbext_ft_DocObject, false, false, true, ".dox"},
    {"Designer", ".dsr", vbext_ct_ActiveXDesigner, vbext_ft_Designers, false, false, true, ".dca"},
    {"RelatedDoc", "", vbext_ct_RelatedDocument, vbext_ft_Binary, false, false, false, ""},
    {"ResFile32", ".res", vbext_ct_ResFile, vbext_ft_Res, false, true, false, ""},
}};

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && rt::IEquals(text.substr(0, prefix.size()), prefix);
}

}  // namespace

const ComponentKind* KindForKey(std::string_view key) {
  for (const ComponentKind& kind : kKinds)
    if (rt::IEquals(kind.key, key)) return &kind;
  return nullptr;
}

std::vector<std::string_view> ComponentKeys() {
  std::vector<std::string_view> keys;
  for (const ComponentKind& kind : kKinds) keys.push_back(kind.key);
  return keys;
}

const ComponentKind* KindForExtension(std::string_view extension) {
  for (const ComponentKind& kind : kKinds)
    if (!kind.extension.empty() && rt::IEquals(kind.extension, extension)) return &kind;
  return nullptr;
}

SourceFacts ReadSourceFacts(std::string_view bytes) {
  SourceFacts facts;
  size_t pos = 0;
  while (pos < bytes.size() && !facts.vbName) {
    size_t end = bytes.find('\n', pos);
    if (end == std::string_view::npos) end = bytes.size();
    std::string_view line = bytes.substr(pos, end - pos);
    pos = end + 1;
    if (line.ends_with('\r')) line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    if (StartsWithNoCase(line, "Begin VB.MDIForm ")) facts.mdiForm = true;
    if (!StartsWithNoCase(line, "Attribute VB_Name")) continue;
    const auto pair = SplitKeyValue(line);
    if (pair && rt::IEquals(pair->key, "Attribute VB_Name"))
      facts.vbName = rt::Cp1252ToUtf8(Unquote(pair->value));
  }
  return facts;
}

}  // namespace sentrune::headless
