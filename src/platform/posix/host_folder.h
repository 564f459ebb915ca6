#pragma once
// Host folder lookups shared by the file system: reading a folder and finding
// an entry the way Windows would find it.
#include <optional>
#include <string>
#include <vector>

namespace sentrune::posix {

// `folder` + "/" + `name`, without doubling the slash of "/".
std::string JoinHost(const std::string& folder, const std::string& name);

// The entry names of a host folder without "." and "..", sorted by their
// upper-case form (the order NTFS lists them in), so that listings and 8.3
// aliases do not depend on the host's directory order. Empty when the folder
// cannot be read.
std::vector<std::string> ReadFolder(const std::string& folder);

// The stored name of `name` in `folder`: the name itself when it exists as
// given, else the first entry equal to it ignoring case, else, for a name
// holding "~", the entry whose 8.3 alias it is.
std::optional<std::string> FindEntry(const std::string& folder, const std::string& name);

}  // namespace sentrune::posix
