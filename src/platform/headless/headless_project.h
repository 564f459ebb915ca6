#pragma once
// One project of the headless IDE, read from its .vbp file as the IDE reads
// it and written back with only the edited lines changed.
//
// The file is Windows-1252 text with CR LF or LF-only lines. The leading
// section holds "Key=Value" lines; "[...]" sections that follow (and keys we
// do not interpret) are kept as they are. Paths in the file are relative to
// the project's folder unless absolute. Missing files make broken
// references or missing components, never a failure.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/headless/component_kinds.h"
#include "platform/headless/event_hub.h"
#include "platform/headless/headless_items.h"
#include "platform/headless/line_file.h"
#include "platform/headless/reference_line.h"
#include "platform/ide.h"
#include "platform/typelib_source.h"

namespace sentrune::headless {

// What a project needs from its IDE. The file system and the type library
// source (which may be null) must outlive the project.
struct ProjectContext {
  platform::FileSystem& files;
  platform::TypeLibSource* typelibs = nullptr;
  std::weak_ptr<EventHub> events;
};

class HeadlessProject : public platform::VBProject,
                        public std::enable_shared_from_this<HeadlessProject> {
 public:
  // Reads the project file at a full Windows path. Fails, naming the file,
  // when it cannot be read or holds no valid "Type=" line.
  static rt::Result<std::shared_ptr<HeadlessProject>> Load(const ProjectContext& context,
                                                           const std::string& fileName);

  std::string Name() const override;
  int Type() const override { return type_; }
  std::string FileName() const override { return fileName_; }
  uintptr_t Identity() const override { return reinterpret_cast<uintptr_t>(this); }
  std::string BuildFileName() const override;
  std::string CompatibleOleServer() const override;
  // Written as CompatibleMode="2" and CompatibleEXE32="path", the path
  // relative to the project's folder whenever both are on the same drive
  // (as the IDE writes it). Existing lines are replaced in place; missing
  // ones go after the ExeName32/Path32 lines (else after Name, else after
  // Type). An empty path writes
  // CompatibleMode="0" and drops the CompatibleEXE32 line.
  rt::Status SetCompatibleOleServer(const std::string& path) override;

  std::vector<std::shared_ptr<platform::Reference>> References() override;
  // Needs the type library source; the new line follows the last reference.
  rt::Result<std::shared_ptr<platform::Reference>> AddReferenceFromFile(const std::string& path) override;
  std::vector<std::shared_ptr<platform::VBComponent>> VBComponents() override;
  // Raises ItemAdded and AfterAddFile; the new line follows the last
  // component line.
  rt::Result<std::shared_ptr<platform::VBComponent>> AddComponentFromFile(const std::string& path) override;
  // Raises ItemRemoved and AfterRemoveFile; its line is dropped.
  rt::Status RemoveComponent(const platform::VBComponent& component) override;

  // Both write through a temporary file and raise AfterWriteFile
  // (vbext_ft_Project) with 0 or the error number. SaveAs writes the lines
  // as they are: relative paths are not rebased to the new folder.
  rt::Status Save() override;
  rt::Status SaveAs(const std::string& fileName) override;

  // The bytes Save would write.
  std::string Serialize() const { return lines_.Serialize(); }
  // The value of a key of the leading section as UTF-8, enclosing quotes
  // removed; later sections are not searched.
  std::optional<std::string> Value(std::string_view key) const;
  // "Object=" lines: the controls the project uses.
  const std::vector<ObjectLine>& Objects() const { return objects_; }
  // Full paths of component files that could not be read.
  const std::vector<std::string>& MissingFiles() const { return missing_; }
  const std::vector<std::shared_ptr<HeadlessReference>>& ReferenceItems() const { return references_; }
  std::shared_ptr<HeadlessComponent> FindComponent(uintptr_t identity) const;
  // The IDE renames a project through this; the Name line follows.
  void SetName(const std::string& name);

 private:
  HeadlessProject(const ProjectContext& context, std::string fileName, LineFile lines);

  std::string Folder() const;
  bool IsFile(const std::string& path) const;
  void ReadItems();
  void ReadReference(std::string_view value);
  void ReadControlReference(const ObjectLine& control);
  void ReadComponent(const RawLine& line, const ComponentKind& kind, std::string_view value);
  struct ComponentFacts {
    std::string name;
    int type = 0;
    std::vector<std::string> files;
  };
  // What the IDE learns of a component file; fails when it cannot be read.
  rt::Result<ComponentFacts> InspectComponent(const ComponentKind& kind, const std::string& fullPath,
                                              const std::string& declaredName) const;
  // Replaces the line of `key` or inserts one after `anchor`; returns its id.
  uint32_t WriteKey(std::string_view key, const std::string& value, uint32_t anchor);
  uint32_t TypeLine() const;
  rt::Status WriteTo(const std::string& fileName);

  platform::FileSystem& files_;
  platform::TypeLibSource* typelibs_;
  std::weak_ptr<EventHub> events_;
  std::string fileName_;
  LineFile lines_;
  int type_ = platform::vbext_pt_StandardExe;
  std::vector<std::shared_ptr<HeadlessReference>> references_;
  std::vector<std::shared_ptr<HeadlessComponent>> components_;
  std::vector<ObjectLine> objects_;
  std::vector<std::string> missing_;
};

}  // namespace sentrune::headless
