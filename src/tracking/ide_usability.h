#pragma once
// Whether an IDE object handed out earlier still stands for something open.
// In the IDE an object of a closed project fails when its Name is read; the
// object model here never fails that read, so usability is asked of the IDE
// instead. Hosts whose objects can tell for themselves supply their own.
#include "platform/ide.h"

namespace sentrune {

class IdeUsability {
 public:
  virtual ~IdeUsability() = default;
  virtual bool Usable(const platform::VBProject& project) = 0;
  virtual bool Usable(const platform::VBComponent& component) = 0;
};

// A project is usable while the IDE lists it among its open projects; a
// component while one of those projects holds a component of its identity.
class OpenProjectsUsability : public IdeUsability {
 public:
  // The IDE must outlive this object.
  explicit OpenProjectsUsability(platform::VBE& ide) : ide_(ide) {}
  bool Usable(const platform::VBProject& project) override;
  bool Usable(const platform::VBComponent& component) override;

 private:
  platform::VBE& ide_;
};

}  // namespace sentrune
