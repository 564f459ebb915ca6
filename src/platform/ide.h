#pragma once
// The IDE's extensibility object model as the add-in uses it: projects, their
// components and references, the command bars that carry the add-in's menu,
// and the events the IDE raises. The add-in DLL implements it over the real
// IDE's COM objects, the command-line host over .vbp/.vbg files.
//
// Ownership: the IDE hands out objects as shared_ptr, as the real IDE hands
// out counted COM references; a null pointer is the IDE's Nothing. An object
// stays usable as long as it is held, but once its project is closed or its
// control deleted, calls on it change nothing in the IDE. Texts are UTF-8.
//
// Events reach sinks the core implements. Subscribing returns a Subscription;
// destroying it unsubscribes, even after the IDE itself is gone. A sink must
// outlive its subscription. Events for a project reach only the sinks
// subscribed for that very project. A handler may subscribe or unsubscribe
// (itself or others) while an event is being delivered: a sink removed during
// delivery is not called afterwards, one added during it first hears the next
// event.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/result.h"

namespace sentrune::platform {

// The IDE's enumerations, numbered as the IDE numbers them.
enum vbext_FileType : int {
  vbext_ft_Form = 0,
  vbext_ft_Module = 1,
  vbext_ft_Class = 2,
  vbext_ft_Project = 3,
  vbext_ft_Exe = 4,
  vbext_ft_Frx = 5,
  vbext_ft_Res = 6,
  vbext_ft_UserControl = 7,
  vbext_ft_PropertyPage = 8,
  vbext_ft_DocObject = 9,
  vbext_ft_Binary = 10,
  vbext_ft_GroupProject = 11,
  vbext_ft_Designers = 12,
};

enum vbext_ProjectType : int {
  vbext_pt_StandardExe = 0,
  vbext_pt_ActiveXExe = 1,
  vbext_pt_ActiveXDll = 2,
  vbext_pt_ActiveXControl = 3,
};

enum vbext_ComponentType : int {
  vbext_ct_StdModule = 1,
  vbext_ct_ClassModule = 2,
  vbext_ct_MSForm = 3,
  vbext_ct_ResFile = 4,
  vbext_ct_VBForm = 5,
  vbext_ct_VBMDIForm = 6,
  vbext_ct_PropPage = 7,
  vbext_ct_UserControl = 8,
  vbext_ct_DocObject = 9,
  vbext_ct_RelatedDocument = 10,
  vbext_ct_ActiveXDesigner = 11,
};

enum vbext_RefKind : int {
  vbext_rk_TypeLib = 0,  // a type library (the reference list's "External")
  vbext_rk_Project = 1,  // another open project (the reference list's "VBP")
};

// Office command bar control types.
enum MsoControlType : int {
  msoControlButton = 1,
  msoControlPopup = 10,
};

// One reference of a project. Every property read may fail as the IDE's
// property gets can (a broken reference in the real IDE raises on some of
// them), so each comes back as a Result and the caller decides what a
// failed read means.
class Reference {
 public:
  virtual ~Reference() = default;
  // The library's or project's name ("stdole").
  virtual rt::Result<std::string> Name() const = 0;
  virtual rt::Result<std::string> Description() const = 0;
  // Full Windows path of the type library (a "\3" suffix selects a resource)
  // or of the referenced project file.
  virtual rt::Result<std::string> FullPath() const = 0;
  // "{XXXXXXXX-...}"; empty for a project reference.
  virtual rt::Result<std::string> Guid() const = 0;
  virtual rt::Result<int> Major() const = 0;
  virtual rt::Result<int> Minor() const = 0;
  // True when the referenced file cannot be found.
  virtual rt::Result<bool> IsBroken() const = 0;
  // vbext_RefKind.
  virtual rt::Result<int> Type() const = 0;
};

// One component (form, module, class, control, ...) of a project.
class VBComponent {
 public:
  virtual ~VBComponent() = default;
  virtual std::string Name() const = 0;
  // vbext_ComponentType.
  virtual int Type() const = 0;
  // FileNames(1..FileCount): full Windows paths, the source file first, then
  // its binary companion (.frx, .ctx, ...) when there is one. Empty for a
  // component never saved.
  virtual std::vector<std::string> FileNames() const = 0;
  // The same component gives the same identity for as long as it is part of
  // its project, whichever object represents it; a different component
  // gives a different one. Only for comparison, never dereferenced.
  virtual uintptr_t Identity() const = 0;
};

class VBProject {
 public:
  virtual ~VBProject() = default;
  virtual std::string Name() const = 0;
  // vbext_ProjectType.
  virtual int Type() const = 0;
  // The project file's full Windows path; empty for a project never saved.
  virtual std::string FileName() const = 0;
  // As a component's identity: the same project gives the same one for as
  // long as it is open, whichever object represents it.
  virtual uintptr_t Identity() const = 0;
  // Full Windows path of the component a build writes, resolved the way the
  // IDE resolves it (".." taken out).
  virtual std::string BuildFileName() const = 0;
  // The binary compatibility file as a full Windows path; empty when the
  // project names none.
  virtual std::string CompatibleOleServer() const = 0;
  // Points the project at a compatibility file and switches it to binary
  // compatibility; an empty path switches compatibility off. Takes effect
  // in the project file when the project is next saved.
  virtual rt::Status SetCompatibleOleServer(const std::string& path) = 0;

  // The references in the IDE's order.
  virtual std::vector<std::shared_ptr<Reference>> References() = 0;
  // References.AddFromFile: adds a reference to the type library in a file.
  // Fails when the file holds no type library or one with the same GUID is
  // referenced already.
  virtual rt::Result<std::shared_ptr<Reference>> AddReferenceFromFile(const std::string& path) = 0;

  // The components in the IDE's order.
  virtual std::vector<std::shared_ptr<VBComponent>> VBComponents() = 0;
  // VBComponents.AddFile: adds the component in a source file (.cls, .bas,
  // .frm, .ctl, ...). Fails when the file is missing or its component's
  // name is taken in this project.
  virtual rt::Result<std::shared_ptr<VBComponent>> AddComponentFromFile(const std::string& path) = 0;
  // VBComponents.Remove: drops the component from the project (its files
  // stay on disk). Fails for a component of another project.
  virtual rt::Status RemoveComponent(const VBComponent& component) = 0;

  // Writes the project file (Save) or writes it under another name and
  // makes that the project's file (SaveAs).
  virtual rt::Status Save() = 0;
  virtual rt::Status SaveAs(const std::string& fileName) = 0;
};

class CommandBarControls;

// A menu item (button) or a pop-up menu.
class CommandBarControl {
 public:
  virtual ~CommandBarControl() = default;
  // MsoControlType.
  virtual int Type() const = 0;
  virtual std::string Caption() const = 0;
  virtual void SetCaption(const std::string& caption) = 0;
  virtual bool BeginGroup() const = 0;
  virtual void SetBeginGroup(bool beginGroup) = 0;
  virtual bool Enabled() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
  virtual bool Visible() const = 0;
  virtual void SetVisible(bool visible) = 0;
  virtual std::string Tag() const = 0;
  virtual void SetTag(const std::string& tag) = 0;
  // Removes the control (and a pop-up's items) from its bar. Fails when it
  // is gone already.
  virtual rt::Status Delete() = 0;
  // A pop-up's own items; null for a button.
  virtual std::shared_ptr<CommandBarControls> Controls() = 0;
};

class CommandBarControls {
 public:
  virtual ~CommandBarControls() = default;
  virtual std::vector<std::shared_ptr<CommandBarControl>> Items() = 0;
  // Adds a control of an MsoControlType at the end, temporary (gone when the
  // IDE closes). Fails for another type or a deleted parent.
  virtual rt::Result<std::shared_ptr<CommandBarControl>> Add(int type) = 0;
};

class CommandBar {
 public:
  virtual ~CommandBar() = default;
  virtual std::string Name() const = 0;
  virtual std::shared_ptr<CommandBarControls> Controls() = 0;
};

class CommandBars {
 public:
  virtual ~CommandBars() = default;
  // The bar of that name ("Add-Ins"), compared without regard to case; null
  // when there is none.
  virtual std::shared_ptr<CommandBar> Item(const std::string& name) = 0;
};

// A window of the IDE.
class Window {
 public:
  virtual ~Window() = default;
  virtual std::string Caption() const = 0;
};

// Sinks. Every handler does nothing unless overridden, as a handler that VB
// code does not write does nothing.
using ProjectPtr = std::shared_ptr<VBProject>;
using ComponentPtr = std::shared_ptr<VBComponent>;
using ControlPtr = std::shared_ptr<CommandBarControl>;

class VBProjectsEventsSink {
 public:
  virtual ~VBProjectsEventsSink() = default;
  virtual void ItemAdded(const ProjectPtr&) {}
  virtual void ItemRemoved(const ProjectPtr&) {}
  virtual void ItemRenamed(const ProjectPtr&, const std::string& /*oldName*/) {}
  virtual void ItemActivated(const ProjectPtr&) {}
};

class VBComponentsEventsSink {
 public:
  virtual ~VBComponentsEventsSink() = default;
  virtual void ItemAdded(const ComponentPtr&) {}
  virtual void ItemRemoved(const ComponentPtr&) {}
  virtual void ItemRenamed(const ComponentPtr&, const std::string& /*oldName*/) {}
  virtual void ItemSelected(const ComponentPtr&) {}
  virtual void ItemActivated(const ComponentPtr&) {}
  virtual void ItemReloaded(const ComponentPtr&) {}
};

// File types are vbext_FileType values. By-reference arguments may be
// changed by the handler; the IDE reads them back after the last sink.
class FileControlEventsSink {
 public:
  virtual ~FileControlEventsSink() = default;
  virtual void AfterAddFile(const ProjectPtr&, int /*fileType*/, const std::string& /*fileName*/) {}
  virtual void AfterChangeFileName(const ProjectPtr&, int /*fileType*/, const std::string& /*newName*/,
                                   const std::string& /*oldName*/) {}
  virtual void AfterCloseFile(const ProjectPtr&, int /*fileType*/, const std::string& /*fileName*/,
                              bool /*wasDirty*/) {}
  // result: 0 when the write succeeded.
  virtual void AfterWriteFile(const ProjectPtr&, int /*fileType*/, const std::string& /*fileName*/,
                              int16_t /*result*/) {}
  virtual void AfterRemoveFile(const ProjectPtr&, int /*fileType*/, const std::string& /*fileName*/) {}
  virtual void BeforeLoadFile(const ProjectPtr&, std::vector<std::string>& /*fileNames*/) {}
  virtual void DoGetNewFileName(const ProjectPtr&, int /*fileType*/, std::string& /*newName*/,
                                const std::string& /*oldName*/, bool& /*cancelDefault*/) {}
  virtual void RequestChangeFileName(const ProjectPtr&, int /*fileType*/, const std::string& /*newName*/,
                                     const std::string& /*oldName*/, bool& /*cancel*/) {}
  // The IDE is about to write fileName; setting cancel stops the write.
  virtual void RequestWriteFile(const ProjectPtr&, const std::string& /*fileName*/, bool& /*cancel*/) {}
};

class CommandBarEventsSink {
 public:
  virtual ~CommandBarEventsSink() = default;
  virtual void Click(const ControlPtr&, bool& /*handled*/, bool& /*cancelDefault*/) {}
};

// Destroying it ends the subscription.
class Subscription {
 public:
  virtual ~Subscription() = default;
};

// VBE.Events. Each call subscribes `sink`; a null result means the target
// (a null or closed project, a null or deleted control) raises no events.
class Events {
 public:
  virtual ~Events() = default;
  virtual std::unique_ptr<Subscription> VBProjectsEvents(VBProjectsEventsSink& sink) = 0;
  virtual std::unique_ptr<Subscription> VBComponentsEvents(const ProjectPtr& project,
                                                           VBComponentsEventsSink& sink) = 0;
  virtual std::unique_ptr<Subscription> FileControlEvents(const ProjectPtr& project,
                                                           FileControlEventsSink& sink) = 0;
  virtual std::unique_ptr<Subscription> CommandBarEvents(const ControlPtr& control,
                                                         CommandBarEventsSink& sink) = 0;
};

// The IDE's root object.
class VBE {
 public:
  virtual ~VBE() = default;
  // The open projects in the IDE's order.
  virtual std::vector<ProjectPtr> VBProjects() = 0;
  // Null when no project is open.
  virtual ProjectPtr ActiveVBProject() = 0;
  // Null when no component is selected.
  virtual ComponentPtr SelectedVBComponent() = 0;
  // Null when no window is active.
  virtual std::shared_ptr<Window> ActiveWindow() = 0;
  virtual std::shared_ptr<platform::CommandBars> CommandBars() = 0;
  // Lives as long as the VBE.
  virtual platform::Events& Events() = 0;
};

}  // namespace sentrune::platform
