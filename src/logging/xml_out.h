#pragma once
// frmAddinMain's XMLOut: a tree of nodes as indented XML. The form is kept
// deliberately simple (no declaration, no attributes, no escaping); readers
// of these files expect exactly this.
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/ui.h"
#include "runtime/result.h"

namespace sentrune {

// The lines XMLOut writes, before characters outside 32..127 become "#".
std::vector<std::string> XmlLines(const std::vector<platform::TreeNode>& roots);

// Writes the tree to FileName, replacing it, lines ending in CR LF. An empty
// FileName or an empty tree writes nothing.
rt::Status XMLOut(platform::FileSystem& fs, const std::vector<platform::TreeNode>& roots,
                  const std::string& FileName);

}  // namespace sentrune
