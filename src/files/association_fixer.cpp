#include "files/association_fixer.h"

#include <array>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "settings/c_registry.h"

namespace sentrune {
namespace {

constexpr std::array<const char*, 10> kClasses = {
    "ProjectGroup", "Project",      "Form",         "Module",       "ClassModule",
    "UserControl",  "Designer",     "PropertyPage", "UserDocument", "VBZFile",
};

constexpr const char* kTitle = "Fix Associations";

std::string ShellFailureText(int code) {
  switch (code) {
    case 31: return "no association";
    case 2: return "file not found";
    case 3: return "path not found";
    case 11: return "bad format";
    default: return "";
  }
}

enum class Step { kNext, kStop };

// One class: asks before a change, confirms one that is already right.
Step FixOne(AddinState& state, cRegistry& registry, const std::string& name, const std::string& command,
            int32_t& changes) {
  registry.SetSectionKey("VisualBasic." + name + "\\shell\\open\\command");
  const std::string current = RegVariantText(registry.Value());
  if (rt::LCase(current) != rt::LCase(command)) {
    const int answer = lfncMsgBoxEX(state, "Fix '" + name + "'?",
                                    platform::mb::kYesNoCancel + platform::mb::kQuestion, kTitle);
    if (answer == platform::mb::kCancel) return Step::kStop;
    if (answer == platform::mb::kYes && registry.SetValue(command).ok()) ++changes;
    // A refused write was made pending by the registry class; it must not
    // outlive this class.
    state.err.Clear();
    return Step::kNext;
  }
  const int answer = lfncMsgBoxEX(state,
                                  "'" + name + "' registry setting is correct. No change required.\r\n"
                                  "Press Ok to continue or press Cancel to stop processing associations.",
                                  platform::mb::kOkCancel, kTitle);
  return answer == platform::mb::kCancel ? Step::kStop : Step::kNext;
}

}  // namespace

std::string lfncFindExecutable(AddinState& state, const std::string& extension, platform::Processes* programs) {
  platform::FileSystem& files = state.files();
  const std::string dummy = rt::AddBackslash(state.env().TempPath()) + "Dummy." + extension;
  (void)files.WriteFile(dummy, "Test\r\n");
  std::string program;
  const int code = (programs ? *programs : state.env().Programs()).FindExecutable(dummy, program);
  (void)files.DeleteFile(dummy);
  if (code < 32) return ShellFailureText(code);
  if (const size_t nul = program.find('\0'); nul != std::string::npos) program.resize(nul);
  const rt::Result<std::string> longPath = files.GetLongPathName(program);
  return longPath.ok() ? *longPath : program;
}

int32_t lfncFixAssociations(AddinState& state, platform::Registry& registry, platform::Processes* programs) {
  const std::string command = "\"" + lfncFindExecutable(state, "vbp", programs) + "\" \"%1\"";
  cRegistry classes(state, registry);
  classes.SetClassKey(platform::kHkeyClassesRoot);
  classes.SetValueKey("");
  classes.SetValueType(platform::kRegSz);
  classes.SetDefault(std::string());
  int32_t changes = 0;
  for (const char* name : kClasses)
    if (FixOne(state, classes, name, command, changes) == Step::kStop) break;
  lfncMsgBoxEX(state, "Operation Complete\r\n" + std::to_string(changes) + " registry entries were changed",
               platform::mb::kInformation, kTitle);
  return changes;
}

}  // namespace sentrune
