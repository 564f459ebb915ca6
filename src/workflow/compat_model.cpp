// The Binary Compatibility Model: the dated copy of a component that the
// project keeps compatibility against, set up, compared and renewed.
#include "files/file_functions.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "state/msgbox.h"
#include "verify/frm_install_details.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
constexpr const char* kCompatBase = "CompatBase";
using StepOption = std::array<int16_t, kProjectTypeCount> OptionSet::*;

// Compares the component with the model and shows what differs; when
// nothing does, says so only to a user who asked for the comparison. A file
// that could not be read (a negative result) has been reported as such, and
// is no comparison that found nothing.
int32_t CompareWithModel(AddinState& state, const std::string& component, const std::string& model,
                         bool asked) {
  frmInstallDetails details(state);
  const int32_t differences = details.CompareComps(component, model);
  if (differences > 0) {
    details.Show("Comparison Results");
  } else if (differences == 0 && asked) {
    lfncMsgBoxEX(state, "No Differences Detected.", mb::kOkOnly, "Sentrune");
  }
  return differences;
}

// The comparison steps share everything but their option and question.
std::optional<int32_t> CompareStep(const StepContext& step, StepOption option, const char* caption,
                                   const char* prompt) {
  const int16_t value = StepValue(step.options.*option, step.project);
  if (value <= 0) return std::nullopt;
  const std::string model = step.project.CompatibleOleServer();
  const platform::FileSystem& fs = step.state.files();
  if (!lfncFileExists(fs, step.buildFile) || !lfncFileExists(fs, model)) return std::nullopt;
  if (value == kAskFirst) {
    const frmFileHandlerEX form = AskStep(
        step.state,
        {.caption = caption, .prompt = prompt, .dialogType = 1, .source = step.buildFile, .destination = model});
    if (form.SelectedButton == mb::kNo) return std::nullopt;
  }
  return CompareWithModel(step.state, step.buildFile, model, value == kAskFirst);
}

// What tells setting a model up from renewing it.
struct ModelStep {
  StepOption option;
  // Setting up leaves alone a model that keeps compatibility.
  bool onlyUnfitModels;
  // Setting up proposes the folder the project remembers for models when
  // there is no current model to go beside.
  bool proposesRemembered;
  const char* caption;
  const char* prompt;
  // Renewing writes the name it chose without asking.
  bool silent;
  std::string BuildReport::*made;
};

constexpr ModelStep kSetUp{.option = &OptionSet::ManageComp,
                           .onlyUnfitModels = true,
                           .proposesRemembered = true,
                           .caption = "Manage Compatibility?",
                           .prompt = "Sentrune can setup your Binary Compatibility Model for you.",
                           .silent = false,
                           .made = &BuildReport::modelSetUp};
// The old model stays: a new dated copy goes beside it.
constexpr ModelStep kRenew{.option = &OptionSet::UpdateCompatIfReqd,
                           .onlyUnfitModels = false,
                           .proposesRemembered = false,
                           .caption = "Update Compatibility Model?",
                           .prompt = "Update your Binary Compatibility Model?",
                           .silent = true,
                           .made = &BuildReport::modelUpdated};

bool NeedsNewModel(const std::string& model, const std::string& component) {
  // A ".tmp" model is the IDE's own stand-in, and a model that is the build
  // output itself changes with every build: neither keeps compatibility.
  return model.empty() || (model.size() >= 4 && rt::LCase(model.substr(model.size() - 4)) == ".tmp") ||
         model == component;
}

// The dated name of this build's model: beside the current model when that
// exists, else in `folder` when one is given, else in the component's
// "Compat\" folder. An earlier model is never replaced by a later one.
std::string ProposedModel(const StepContext& step, const std::string& current, const std::string& folder) {
  const platform::FileSystem& fs = step.state.files();
  const std::string dated = rt::GetFileTitle(lfncMakeBackupName(fs, step.options, step.buildFile, ""));
  if (lfncFileExists(fs, current)) return UnusedName(fs, rt::GetFolder(current) + dated);
  if (!folder.empty()) return UnusedName(fs, rt::AddBackslash(folder) + dated);
  return UnusedName(fs, rt::GetFolder(step.buildFile) + "Compat\\" + dated);
}

// Asks about a new model path when the step's value says so; the path the
// user settled on, or nothing after a No. A new folder is remembered.
std::optional<std::string> ConfirmModelPath(AddinState& state, RememberedFolders& folders,
                                            const std::string& remembered, int16_t value,
                                            const StepQuestion& question) {
  if (value != kAskFirst) return question.destination;
  const frmFileHandlerEX form = AskStep(state, question);
  if (form.SelectedButton == mb::kNo) return std::nullopt;
  const std::string chosenFolder = rt::GetFolder(form.DestinationFile);
  if (chosenFolder != remembered) folders.Store(kCompatBase, chosenFolder);
  return form.DestinationFile;
}

// Copies the component to the model path and points the project at it.
int32_t MakeModel(const StepContext& step, const std::string& model, bool silent) {
  const int32_t copied = lfncCopyFileEX(step.state, step.options, step.buildFile, model, true, silent);
  if (copied != 0) return copied;
  const rt::Status pointed = step.project.SetCompatibleOleServer(model);
  if (pointed.ok()) return 0;
  step.state.err.Set(pointed.error());
  lfncMsgBoxEX(step.state,
               "Error " + std::to_string(pointed.error().number) + "\r\n" + pointed.error().description,
               mb::kCritical, "modCommon:SetCompatibleOleServer");
  return pointed.error().number;
}

// Sets up or renews the model, as `kind` says.
int32_t RunModelStep(StepContext& step, const ModelStep& kind) {
  const int16_t value = StepValue(step.options.*kind.option, step.project);
  if (value <= 0 || !lfncFileExists(step.state.files(), step.buildFile)) return 0;
  const std::string current = step.project.CompatibleOleServer();
  if (kind.onlyUnfitModels && !NeedsNewModel(current, step.buildFile)) return 0;

  RememberedFolders folders(step.state, step.project);
  // The database is read only where its folder is proposed or asked about.
  const std::string remembered =
      kind.proposesRemembered || value == kAskFirst ? folders.Get(kCompatBase) : std::string();
  const std::string proposal = ProposedModel(step, current, kind.proposesRemembered ? remembered : "");
  const std::optional<std::string> model = ConfirmModelPath(step.state, folders, remembered, value,
                                                            {.caption = kind.caption,
                                                             .prompt = kind.prompt,
                                                             .dialogType = 1,
                                                             .source = step.buildFile,
                                                             .destination = proposal,
                                                             .editable = true});
  int32_t result = 0;
  if (model) {
    result = MakeModel(step, *model, kind.silent);
    if (result == 0) step.report.*kind.made = *model;
  }
  step.state.err.Clear();
  return result;
}

}  // namespace

int32_t lfncCompBeforeEX(StepContext& step) {
  const std::optional<int32_t> differences = CompareStep(
      step, &OptionSet::CompareCompsBefore, "Compare Interface? (Pre Compile)",
      "Before building, do you want Sentrune to check to make sure all interfaces are present in the Binary "
      "Compatibility Model?");
  if (differences) step.report.differencesBefore = *differences;
  step.state.err.Clear();
  return 0;
}

int32_t lfncCompAfterEX(StepContext& step, bool& updateNeeded) {
  updateNeeded = false;
  const std::optional<int32_t> differences = CompareStep(
      step, &OptionSet::CompareCompsAfter, "Compare Interfaces? (Post Compile)",
      "Do you want to compare interfaces to see if the Binary Compatibility Model needs to be updated?");
  if (differences) {
    updateNeeded = *differences > 0;
    step.report.differencesAfter = *differences;
    step.report.updateNeeded = updateNeeded;
  }
  step.state.err.Clear();
  return 0;
}

int32_t lfncManageCompatEX(StepContext& step) { return RunModelStep(step, kSetUp); }

int32_t lfncUpdateCompatEX(StepContext& step) { return RunModelStep(step, kRenew); }

}  // namespace sentrune
