#include "tracking/ide_usability.h"

namespace sentrune {

bool OpenProjectsUsability::Usable(const platform::VBProject& project) {
  const uintptr_t identity = project.Identity();
  for (const platform::ProjectPtr& open : ide_.VBProjects())
    if (open->Identity() == identity) return true;
  return false;
}

bool OpenProjectsUsability::Usable(const platform::VBComponent& component) {
  const uintptr_t identity = component.Identity();
  for (const platform::ProjectPtr& open : ide_.VBProjects())
    for (const platform::ComponentPtr& member : open->VBComponents())
      if (member->Identity() == identity) return true;
  return false;
}

}  // namespace sentrune
