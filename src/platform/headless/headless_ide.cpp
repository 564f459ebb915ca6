#include "platform/headless/headless_ide.h"

#include "platform/headless/group_file.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::headless {
namespace {

class HeadlessWindow : public platform::Window {
 public:
  explicit HeadlessWindow(std::string caption) : caption_(std::move(caption)) {}
  std::string Caption() const override { return caption_; }

 private:
  std::string caption_;
};

rt::VbError NotOpen() { return rt::MakeError(rt::errnum::kInvalidProcedureCall, "The project is not open"); }

rt::VbError NoComponent() {
  return rt::MakeError(rt::errnum::kInvalidProcedureCall, "The component is not part of an open project");
}

}  // namespace

HeadlessIde::HeadlessIde(platform::FileSystem& files, platform::TypeLibSource* typelibs)
    : files_(files), typelibs_(typelibs) {
  events_ = std::make_shared<EventHub>(
      [this](const platform::VBProject* project) { return Find(project) != nullptr; },
      [](const platform::CommandBarControl* control) {
        const auto* headless = dynamic_cast<const HeadlessControl*>(control);
        return headless && !headless->IsDeleted();
      });
  commandBars_ = std::make_shared<HeadlessCommandBars>(events_);
}

HeadlessIde::~HeadlessIde() = default;

std::vector<platform::ProjectPtr> HeadlessIde::VBProjects() { return {projects_.begin(), projects_.end()}; }

platform::ComponentPtr HeadlessIde::SelectedVBComponent() {
  return selected_ && OwnerOf(*selected_) ? selected_ : nullptr;
}

rt::Result<HeadlessIde::OpenResult> HeadlessIde::Open(const std::string& path) {
  const auto parsed = rt::ParseWinPath(path);
  if (!parsed)
    return rt::MakeError(rt::errnum::kBadFileNameOrNumber, "'" + path + "' is not a full Windows path");
  const std::string fileName = rt::JoinWinPath(*parsed);

  std::vector<GroupMember> members{{fileName, true}};
  const bool group = rt::IEquals(rt::GetExtension(rt::GetFileTitle(fileName)), ".vbg");
  if (group) {
    auto read = ReadGroupFile(files_, fileName);
    if (!read) return read.error();
    members = std::move(*read);
  }

  OpenResult result;
  std::vector<std::shared_ptr<HeadlessProject>> added;
  std::shared_ptr<HeadlessProject> startup;
  for (const GroupMember& member : members) {
    bool isNew = false;
    auto project = OpenProject(member.fileName, isNew);
    if (!project) {
      if (!group) return project.error();
      result.problems.push_back(project.error());
      continue;
    }
    result.projects.push_back(*project);
    if (isNew) added.push_back(*project);
    if (member.startup && !startup) startup = *project;
  }
  NameProjectReferences();
  for (const auto& project : added)
    events_->ProjectsEvent([&](platform::VBProjectsEventsSink& sink) { sink.ItemAdded(project); });
  if (!startup && !result.projects.empty()) startup = result.projects.front();
  if (startup) MakeActive(startup);
  return result;
}

rt::Result<std::shared_ptr<HeadlessProject>> HeadlessIde::OpenProject(const std::string& fileName, bool& isNew) {
  for (const auto& project : projects_)
    if (rt::IEquals(project->FileName(), fileName)) return project;
  auto project = HeadlessProject::Load(ProjectContext{files_, typelibs_, events_}, fileName);
  if (!project) return project.error();
  projects_.push_back(*project);
  isNew = true;
  return project;
}

void HeadlessIde::NameProjectReferences() {
  for (const auto& project : projects_)
    for (const auto& reference : project->ReferenceItems()) {
      if (reference->Data().kind != platform::vbext_rk_Project) continue;
      for (const auto& target : projects_)
        if (rt::IEquals(target->FileName(), reference->Data().fullPath)) reference->SetProjectName(target->Name());
    }
}

rt::Status HeadlessIde::Close(const platform::ProjectPtr& project) {
  const auto closing = Find(project.get());
  if (!closing) return NotOpen();
  std::erase(projects_, closing);
  events_->ForgetProject(closing.get());
  if (active_ == closing) active_ = projects_.empty() ? nullptr : projects_.front();
  events_->ProjectsEvent([&](platform::VBProjectsEventsSink& sink) { sink.ItemRemoved(closing); });
  return {};
}

rt::Status HeadlessIde::RenameProject(const platform::ProjectPtr& project, const std::string& newName) {
  const auto renamed = Find(project.get());
  if (!renamed) return NotOpen();
  const std::string oldName = renamed->Name();
  renamed->SetName(newName);
  NameProjectReferences();
  events_->ProjectsEvent([&](platform::VBProjectsEventsSink& sink) { sink.ItemRenamed(renamed, oldName); });
  return {};
}

std::shared_ptr<HeadlessProject> HeadlessIde::FindProject(const std::string& name) const {
  for (const auto& project : projects_)
    if (rt::IEquals(project->Name(), name)) return project;
  return nullptr;
}

rt::Status HeadlessIde::SetActiveProject(const platform::ProjectPtr& project) {
  const auto target = Find(project.get());
  if (!target) return NotOpen();
  MakeActive(target);
  return {};
}

void HeadlessIde::MakeActive(const std::shared_ptr<HeadlessProject>& project) {
  if (active_ == project) return;
  active_ = project;
  events_->ProjectsEvent([&](platform::VBProjectsEventsSink& sink) { sink.ItemActivated(project); });
}

rt::Status HeadlessIde::SelectComponent(const platform::ComponentPtr& component) {
  const auto owner = component ? OwnerOf(*component) : nullptr;
  if (!owner) return NoComponent();
  MakeActive(owner);
  selected_ = component;
  events_->ComponentsEvent(owner.get(), [&](platform::VBComponentsEventsSink& sink) { sink.ItemSelected(component); });
  return {};
}

rt::Status HeadlessIde::ActivateComponent(const platform::ComponentPtr& component) {
  const auto owner = component ? OwnerOf(*component) : nullptr;
  if (!owner) return NoComponent();
  MakeActive(owner);
  selected_ = component;
  SetActiveWindow(owner->Name() + " - " + component->Name() + " (Code)");
  events_->ComponentsEvent(owner.get(),
                           [&](platform::VBComponentsEventsSink& sink) { sink.ItemActivated(component); });
  return {};
}

void HeadlessIde::SetActiveWindow(std::optional<std::string> caption) {
  window_ = caption ? std::make_shared<HeadlessWindow>(std::move(*caption)) : nullptr;
}

rt::Result<bool> HeadlessIde::FireRequestWriteFile(const platform::ProjectPtr& project,
                                                   const std::string& fileName) {
  const auto target = Find(project.get());
  if (!target) return NotOpen();
  bool cancel = false;
  events_->FileControlEvent(target.get(), [&](platform::FileControlEventsSink& sink) {
    sink.RequestWriteFile(target, fileName, cancel);
  });
  return cancel;
}

rt::Status HeadlessIde::FireAfterWriteFile(const platform::ProjectPtr& project, int fileType,
                                           const std::string& fileName, int16_t result) {
  const auto target = Find(project.get());
  if (!target) return NotOpen();
  events_->FileControlEvent(target.get(), [&](platform::FileControlEventsSink& sink) {
    sink.AfterWriteFile(target, fileType, fileName, result);
  });
  return {};
}

rt::Result<bool> HeadlessIde::ClickMenu(const std::vector<std::string>& captions) {
  if (captions.empty()) return rt::MakeError(rt::errnum::kInvalidProcedureCall, "No menu item given");
  std::shared_ptr<HeadlessControls> level = commandBars_->AddIns();
  bool handled = false;
  for (const std::string& caption : captions) {
    const auto control = level ? level->FindCaption(caption) : nullptr;
    if (!control) return rt::MakeError(rt::errnum::kInvalidProcedureCall, "No menu item '" + caption + "'");
    if (!control->Enabled())
      return rt::MakeError(rt::errnum::kInvalidProcedureCall, "The menu item '" + caption + "' is disabled");
    handled = false;
    bool cancelDefault = false;
    const platform::ControlPtr clicked = control;
    events_->CommandBarEvent(control.get(), [&](platform::CommandBarEventsSink& sink) {
      sink.Click(clicked, handled, cancelDefault);
    });
    level = control->Children();
  }
  return handled;
}

std::shared_ptr<HeadlessProject> HeadlessIde::Find(const platform::VBProject* project) const {
  for (const auto& open : projects_)
    if (open.get() == project) return open;
  return nullptr;
}

std::shared_ptr<HeadlessProject> HeadlessIde::OwnerOf(const platform::VBComponent& component) const {
  for (const auto& project : projects_)
    if (project->FindComponent(component.Identity())) return project;
  return nullptr;
}

}  // namespace sentrune::headless
