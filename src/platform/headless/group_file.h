#pragma once
// A project group (.vbg): "VBGROUP 5.0", then "StartupProject=" and
// "Project=" lines naming the member projects relative to the group's folder.
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "runtime/result.h"

namespace sentrune::headless {

struct GroupMember {
  std::string fileName;  // full Windows path
  bool startup = false;
};

// The members in the file's order. Fails, naming the file, when it cannot be
// read or does not begin with "VBGROUP".
rt::Result<std::vector<GroupMember>> ReadGroupFile(const platform::FileSystem& files,
                                                   const std::string& fileName);

}  // namespace sentrune::headless
