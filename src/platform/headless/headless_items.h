#pragma once
// References and components of a headless project. A component remembers
// the project file line that names it, so that removing it drops that line.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ide.h"
#include "platform/typelib_source.h"

namespace sentrune::headless {

struct ReferenceData {
  std::string name;  // used unless the type library tells its own
  std::string description;
  std::string fullPath;
  std::string guid;
  int major = 0;
  int minor = 0;
  bool broken = false;
  int kind = platform::vbext_rk_TypeLib;
};

class HeadlessReference : public platform::Reference {
 public:
  // With a type library source, the name of an intact type library
  // reference is the library's own name, read when first asked for. The
  // source must outlive the reference.
  HeadlessReference(ReferenceData data, platform::TypeLibSource* typelibs)
      : data_(std::move(data)), typelibs_(typelibs) {}

  rt::Result<std::string> Name() const override;
  rt::Result<std::string> Description() const override { return data_.description; }
  rt::Result<std::string> FullPath() const override { return data_.fullPath; }
  rt::Result<std::string> Guid() const override { return data_.guid; }
  rt::Result<int> Major() const override { return data_.major; }
  rt::Result<int> Minor() const override { return data_.minor; }
  rt::Result<bool> IsBroken() const override { return data_.broken; }
  rt::Result<int> Type() const override { return data_.kind; }

  const ReferenceData& Data() const { return data_; }
  // A project reference is named after the open project it points to.
  void SetProjectName(std::string name) { data_.name = std::move(name); }

 private:
  ReferenceData data_;
  platform::TypeLibSource* typelibs_;
  mutable std::optional<std::string> libraryName_;
};

class HeadlessComponent : public platform::VBComponent {
 public:
  HeadlessComponent(std::string name, int type, int fileType, std::vector<std::string> files,
                    uint32_t lineId)
      : name_(std::move(name)), type_(type), fileType_(fileType), files_(std::move(files)),
        lineId_(lineId) {}

  std::string Name() const override { return name_; }
  int Type() const override { return type_; }
  std::vector<std::string> FileNames() const override { return files_; }
  uintptr_t Identity() const override { return reinterpret_cast<uintptr_t>(this); }

  // vbext_FileType of its source file.
  int FileType() const { return fileType_; }
  uint32_t LineId() const { return lineId_; }

 private:
  std::string name_;
  int type_;
  int fileType_;
  std::vector<std::string> files_;
  uint32_t lineId_;
};

}  // namespace sentrune::headless
