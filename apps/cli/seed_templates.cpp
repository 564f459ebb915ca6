#include "seed_templates.h"

#include "platform/posix/posix_env.h"
#include "runtime/winpath.h"

namespace sentrune::cli {

const std::vector<std::string>& TemplateFileNames() {
  static const std::vector<std::string> names = {"VerifyClassTemplate.txt", "AlignmentHelper.ctl"};
  return names;
}

std::vector<std::string> SeedAddinFolder(platform::FileSystem& files, const std::string& addinFolder,
                                         const std::string& shareFolder) {
  std::vector<std::string> seeded;
  for (const std::string& name : TemplateFileNames()) {
    const std::string target = rt::AddBackslash(addinFolder) + name;
    if (files.GetAttributes(target).ok()) continue;
    if (files.CopyFile(rt::AddBackslash(shareFolder) + name, target, true).ok()) seeded.push_back(name);
  }
  return seeded;
}

std::vector<std::string> SeedAddinFolder(posix::PosixEnv& env) {
  const std::optional<std::string> share = env.Files().Drives().HostToWindows(SENTRUNE_SHARE_DIR);
  if (!share || env.ModuleFolder().empty()) return {};
  return SeedAddinFolder(env.Files(), env.ModuleFolder(), *share);
}

}  // namespace sentrune::cli
