#include "seed_templates.h"

#include "runtime/winpath.h"

namespace sentrune::cli {
namespace {

constexpr const char* kTemplateFiles[] = {"VerifyClassTemplate.txt", "AlignmentHelper.ctl"};

}  // namespace

std::vector<std::string> SeedAddinFolder(platform::FileSystem& files, const std::string& addinFolder,
                                         const std::string& shareFolder) {
  std::vector<std::string> seeded;
  for (const std::string name : kTemplateFiles) {
    const std::string target = rt::AddBackslash(addinFolder) + name;
    if (files.GetAttributes(target).ok()) continue;
    if (files.CopyFile(rt::AddBackslash(shareFolder) + name, target, true).ok()) seeded.push_back(name);
  }
  return seeded;
}

}  // namespace sentrune::cli
