#pragma once
// The headless IDE: the object model over .vbp/.vbg files on a FileSystem,
// driven by a host (the command-line program or a test) that does what a
// developer would do in the IDE: open projects, select components, build,
// click the add-in's menu. Each such step raises the events the IDE raises.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/headless/command_bars.h"
#include "platform/headless/event_hub.h"
#include "platform/headless/headless_project.h"
#include "platform/ide.h"
#include "platform/typelib_source.h"

namespace sentrune::headless {

class HeadlessIde : public platform::VBE {
 public:
  // The file system, and the type library source when given, must outlive
  // every object the IDE hands out. Without a type library source,
  // references are named after their files and AddReferenceFromFile fails.
  explicit HeadlessIde(platform::FileSystem& files, platform::TypeLibSource* typelibs = nullptr);
  HeadlessIde(const HeadlessIde&) = delete;
  HeadlessIde& operator=(const HeadlessIde&) = delete;
  ~HeadlessIde() override;

  std::vector<platform::ProjectPtr> VBProjects() override;
  platform::ProjectPtr ActiveVBProject() override { return active_; }
  platform::ComponentPtr SelectedVBComponent() override;
  std::shared_ptr<platform::Window> ActiveWindow() override { return window_; }
  std::shared_ptr<platform::CommandBars> CommandBars() override { return commandBars_; }
  platform::Events& Events() override { return *events_; }

  struct OpenResult {
    // The projects the file names, in its order (a project already open is
    // listed without being opened again).
    std::vector<std::shared_ptr<HeadlessProject>> projects;
    // Members of a group that could not be opened, as the IDE reports them
    // and goes on.
    std::vector<rt::VbError> problems;
  };
  // Opens a .vbp, or each project of a .vbg, by full Windows path. Raises
  // ItemAdded for every project newly opened, then makes the project (a
  // group's startup project, else its first) active. Fails when a .vbp,
  // or the .vbg itself, cannot be read.
  rt::Result<OpenResult> Open(const std::string& path);
  // Raises ItemRemoved; the project's subscriptions end.
  rt::Status Close(const platform::ProjectPtr& project);
  // Raises ItemRenamed with the old name; the Name line follows on save.
  rt::Status RenameProject(const platform::ProjectPtr& project, const std::string& newName);

  // The open project of that name (without regard to case), or null.
  std::shared_ptr<HeadlessProject> FindProject(const std::string& name) const;
  // Raises ItemActivated when the project was not active.
  rt::Status SetActiveProject(const platform::ProjectPtr& project);
  // Both make the component's project active and the component selected,
  // then raise ItemSelected / ItemActivated for its project. Activating
  // opens its code window, which becomes the active window.
  rt::Status SelectComponent(const platform::ComponentPtr& component);
  rt::Status ActivateComponent(const platform::ComponentPtr& component);
  // Nothing makes the active window none.
  void SetActiveWindow(std::optional<std::string> caption);

  // A build's file events, raised for an open project: returns the cancel
  // flag the sinks left.
  rt::Result<bool> FireRequestWriteFile(const platform::ProjectPtr& project, const std::string& fileName);
  rt::Status FireAfterWriteFile(const platform::ProjectPtr& project, int fileType, const std::string& fileName,
                                int16_t result);

  // Opens the menus along `captions` (from the "Add-Ins" bar, matched as
  // HeadlessControls::FindCaption matches) and clicks the last item: each
  // pop-up on the way hears its own click first, as opening it raises one.
  // Returns the handled flag. Fails when a caption is not found or its
  // control is disabled.
  rt::Result<bool> ClickMenu(const std::vector<std::string>& captions);

 private:
  std::shared_ptr<HeadlessProject> Find(const platform::VBProject* project) const;
  std::shared_ptr<HeadlessProject> OwnerOf(const platform::VBComponent& component) const;
  rt::Result<std::shared_ptr<HeadlessProject>> OpenProject(const std::string& fileName, bool& isNew);
  // Project references are named after the open project they point to.
  void NameProjectReferences();
  void MakeActive(const std::shared_ptr<HeadlessProject>& project);

  platform::FileSystem& files_;
  platform::TypeLibSource* typelibs_;
  std::shared_ptr<EventHub> events_;
  std::shared_ptr<HeadlessCommandBars> commandBars_;
  std::vector<std::shared_ptr<HeadlessProject>> projects_;
  std::shared_ptr<HeadlessProject> active_;
  platform::ComponentPtr selected_;
  std::shared_ptr<platform::Window> window_;
};

}  // namespace sentrune::headless
