#pragma once
// The verification class a user's project gets: the scan of the project's
// references that decides which components it checks, the calls generated for
// each, and the class text made from the template around them.
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "settings/option_set.h"

namespace sentrune {

// What one generated call checks.
struct VerifyBlock {
  std::string componentName;
  std::string guid;
  std::string tlbVersion;
  std::string fileVersion;
  std::string fullPath;
};

struct ReferenceScan {
  std::vector<VerifyBlock> blocks;  // in the project's reference order
  bool hasTlbInf = false;           // the project already refers to tlbinf32.dll
};

// Walks the project's references in order, telling the user about broken
// ones and asking about references to other projects (resolved through the
// open project whose file it names, in `projects`). Runtime libraries, the
// references named in FilteredReferenceList and tlbinf32.dll get no block;
// every other reference is read with the type library reader.
ReferenceScan ScanReferences(AddinState& state, const OptionSet& options, platform::VBProject& project,
                             const std::vector<platform::ProjectPtr>& projects);

// A VB string literal: the text in double quotes, inner quotes doubled.
std::string VbStringLiteral(const std::string& text);

// The calls that check one component. The generated code quotes its texts
// with double quotes, as VB needs.
std::vector<std::string> VerifyBlockLines(const VerifyBlock& block);

// The template (UTF-8) with the calls of every block, joined with CR LF, in
// place of the "|||" marker, named `className` and made private to its
// project (Instancing 1, which every project type accepts).
std::string GenerateVerifyClass(const std::string& templateText, const std::vector<VerifyBlock>& blocks,
                                const std::string& className);

// Sets `Attribute <name> = <value>` in a module's text: the line is replaced
// where it stands, else added after the last leading attribute line (or the
// header's closing line, or at the top). Lines keep their CR LF.
std::string SetModuleAttribute(const std::string& text, const std::string& name, const std::string& value);

}  // namespace sentrune
