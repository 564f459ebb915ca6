#include "sysutil/unc_path.h"

#include <cctype>

namespace sentrune {

std::string MappedDrive2UncPath(platform::Env& env, const std::string& path) {
  const bool hasDrive = path.size() >= 2 && path[1] == ':' &&
                        std::isalpha(static_cast<unsigned char>(path[0]));
  if (!hasDrive) return path;
  const std::optional<std::string> share = env.NetworkConnection(path.substr(0, 2));
  if (!share || share->empty()) return path;
  std::string rest = path.substr(2);
  while (!rest.empty() && rest.front() == '\\') rest.erase(0, 1);
  std::string result = *share;
  while (!result.empty() && result.back() == '\\') result.pop_back();
  return rest.empty() ? result : result + "\\" + rest;
}

}  // namespace sentrune
