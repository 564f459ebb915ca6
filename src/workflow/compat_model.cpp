// The Binary Compatibility Model: the dated copy of a component that the
// project keeps compatibility against, set up, compared and renewed.
#include "files/file_functions.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "verify/frm_install_details.h"
#include "workflow/cls_project.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
constexpr const char* kCompatBase = "CompatBase";

// Compares the component with the model and shows what differs; when
// nothing does, says so only to a user who asked for the comparison.
int32_t CompareWithModel(AddinState& state, const std::string& component, const std::string& model,
                         bool asked) {
  frmInstallDetails details(state);
  const int32_t differences = details.CompareComps(component, model);
  if (differences > 0) {
    details.Show("Comparison Results");
  } else if (asked) {
    lfncMsgBoxEX(state, "No Differences Detected.", mb::kOkOnly, "Sentrune");
  }
  return differences;
}

// The comparison steps share everything but their option and question.
std::optional<int32_t> CompareStep(clsProject& sink, int16_t value, const char* caption, const char* prompt) {
  AddinState& state = sink.services().state;
  const platform::VBProject& project = *sink.CProject();
  if (value <= 0) return std::nullopt;
  const std::string component = project.BuildFileName();
  const std::string model = project.CompatibleOleServer();
  if (!lfncFileExists(state.files(), component) || !lfncFileExists(state.files(), model)) return std::nullopt;
  if (value == kAskFirst) {
    const frmFileHandlerEX form = AskStep(
        state,
        {.caption = caption, .prompt = prompt, .dialogType = 1, .source = component, .destination = model});
    if (form.SelectedButton == mb::kNo) return std::nullopt;
  }
  return CompareWithModel(state, component, model, value == kAskFirst);
}

bool NeedsNewModel(const std::string& model, const std::string& component) {
  // A ".tmp" model is the IDE's own stand-in, and a model that is the build
  // output itself changes with every build: neither keeps compatibility.
  return model.empty() || (model.size() >= 4 && rt::LCase(model.substr(model.size() - 4)) == ".tmp") ||
         model == component;
}

// Asks about a new model path when the step's value says so; the path the
// user settled on, or nothing after a No. A new folder is remembered.
std::optional<std::string> ConfirmModelPath(AddinState& state, RememberedFolders& folders,
                                            const std::string& remembered, int16_t value,
                                            const StepQuestion& question) {
  if (value != kAskFirst) return question.destination;
  const frmFileHandlerEX form = AskStep(state, question);
  if (form.SelectedButton == mb::kNo) return std::nullopt;
  const std::string chosenFolder = lfncGetFolder(form.DestinationFile);
  if (chosenFolder != remembered) folders.Store(kCompatBase, chosenFolder);
  return form.DestinationFile;
}

// Copies the component to the model path and points the project at it.
int32_t MakeModel(AddinState& state, const OptionSet& options, platform::VBProject& project,
                  const std::string& component, const std::string& model, bool silent) {
  const int32_t copied = lfncCopyFileEX(state, options, component, model, true, silent);
  if (copied != 0) return copied;
  const rt::Status pointed = project.SetCompatibleOleServer(model);
  if (pointed.ok()) return 0;
  state.err.Set(pointed.error());
  lfncMsgBoxEX(state,
               "Error " + std::to_string(pointed.error().number) + "\r\n" + pointed.error().description,
               mb::kCritical, "modCommon:SetCompatibleOleServer");
  return pointed.error().number;
}

}  // namespace

int32_t lfncCompBeforeEX(clsProject& sink) {
  const OptionSet& options = sink.services().optionSet();
  const std::optional<int32_t> differences = CompareStep(
      sink, StepValue(options.CompareCompsBefore, *sink.CProject()), "Compare Interface? (Pre Compile)",
      "Before building, do you want Sentrune to check to make sure all interfaces are present in the Binary "
      "Compatibility Model?");
  if (differences) sink.Report().differencesBefore = *differences;
  sink.services().state.err.Clear();
  return 0;
}

int32_t lfncCompAfterEX(clsProject& sink, bool& updateNeeded) {
  updateNeeded = false;
  const OptionSet& options = sink.services().optionSet();
  const std::optional<int32_t> differences = CompareStep(
      sink, StepValue(options.CompareCompsAfter, *sink.CProject()), "Compare Interfaces? (Post Compile)",
      "Do you want to compare interfaces to see if the Binary Compatibility Model needs to be updated?");
  if (differences) {
    updateNeeded = *differences > 0;
    sink.Report().differencesAfter = *differences;
    sink.Report().updateNeeded = updateNeeded;
  }
  sink.services().state.err.Clear();
  return 0;
}

int32_t lfncManageCompatEX(clsProject& sink) {
  AddinState& state = sink.services().state;
  const OptionSet& options = sink.services().optionSet();
  platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.ManageComp, project);
  const std::string component = project.BuildFileName();
  if (value <= 0 || !lfncFileExists(state.files(), component)) return 0;
  const std::string current = project.CompatibleOleServer();
  if (!NeedsNewModel(current, component)) return 0;

  RememberedFolders folders(state, project);
  const std::string remembered = folders.Get(kCompatBase);
  const std::string dated = DatedFileName(state.files(), options, component);
  std::string proposal = DefaultModelPath(state.files(), options, component);
  if (lfncFileExists(state.files(), current)) {
    proposal = lfncGetFolder(current) + dated;
  } else if (!remembered.empty()) {
    proposal = rt::AddBackslash(remembered) + dated;
  }
  const std::optional<std::string> model =
      ConfirmModelPath(state, folders, remembered, value,
                       {.caption = "Manage Compatibility?",
                        .prompt = "Sentrune can setup your Binary Compatibility Model for you.",
                        .dialogType = 1,
                        .source = component,
                        .destination = proposal,
                        .editable = true});
  int32_t result = 0;
  if (model) {
    result = MakeModel(state, options, project, component, *model, false);
    if (result == 0) sink.Report().modelSetUp = *model;
  }
  state.err.Clear();
  return result;
}

int32_t lfncUpdateCompatEX(clsProject& sink) {
  AddinState& state = sink.services().state;
  const OptionSet& options = sink.services().optionSet();
  platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.UpdateCompatIfReqd, project);
  const std::string component = project.BuildFileName();
  if (value <= 0 || !lfncFileExists(state.files(), component)) return 0;

  const std::string current = project.CompatibleOleServer();
  const std::string proposal = lfncFileExists(state.files(), current)
                                   ? lfncGetFolder(current) + DatedFileName(state.files(), options, component)
                                   : DefaultModelPath(state.files(), options, component);
  RememberedFolders folders(state, project);
  const std::string remembered = value == kAskFirst ? folders.Get(kCompatBase) : std::string();
  const std::optional<std::string> model =
      ConfirmModelPath(state, folders, remembered, value,
                       {.caption = "Update Compatibility Model?",
                        .prompt = "Update your Binary Compatibility Model?",
                        .dialogType = 1,
                        .source = component,
                        .destination = proposal,
                        .editable = true});
  int32_t result = 0;
  if (model) {
    // The old model stays: a new dated copy goes beside it.
    result = MakeModel(state, options, project, component, *model, true);
    if (result == 0) sink.Report().modelUpdated = *model;
  }
  state.err.Clear();
  return result;
}

}  // namespace sentrune
