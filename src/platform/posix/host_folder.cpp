#include "platform/posix/host_folder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "platform/posix/short_names.h"
#include "runtime/text.h"

namespace sentrune::posix {

std::string JoinHost(const std::string& folder, const std::string& name) {
  if (!folder.empty() && folder.back() == '/') return folder + name;
  return folder + "/" + name;
}

std::vector<std::string> ReadFolder(const std::string& folder) {
  std::vector<std::string> names;
  std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
  if (!dir) return names;
  while (const dirent* entry = readdir(dir.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  std::vector<std::pair<std::string, std::string>> keyed;
  keyed.reserve(names.size());
  for (std::string& name : names) keyed.emplace_back(rt::UCase(name), std::move(name));
  std::sort(keyed.begin(), keyed.end());
  for (size_t i = 0; i < keyed.size(); ++i) names[i] = std::move(keyed[i].second);
  return names;
}

std::optional<std::string> FindEntry(const std::string& folder, const std::string& name) {
  struct stat st {};
  if (lstat(JoinHost(folder, name).c_str(), &st) == 0) return name;
  const std::vector<std::string> names = ReadFolder(folder);
  for (const std::string& entry : names)
    if (rt::IEquals(entry, name)) return entry;
  if (name.find('~') == std::string::npos) return std::nullopt;
  const std::vector<std::string> aliases = ShortNames(names);
  for (size_t i = 0; i < names.size(); ++i)
    if (rt::IEquals(aliases[i], name)) return names[i];
  return std::nullopt;
}

}  // namespace sentrune::posix
