#include "scripted_ide_projects.h"

#include <map>
#include <utility>

#include "platform/win32/win32_text.h"
#include "scripted_ide_collection.h"

namespace sentrune::testing::ide {
namespace {

using win32::Narrow;
using win32::Widen;

enum : DISPID {
  kName = 0,
  kFileName = 0x6D,
  kReferences = 0x78,
  kCompatibleOleServer = 0x7E,
  kType = 0x81,
  kVBComponents = 0x87,
  kBuildFileName = 0x88,
  kSaveAs = 0x89,
  kComponentName = 0x30,
  kComponentType = 0x31,
};

// A Reference's properties, each failing as the headless reference fails.
const Member kReferenceMembers[] = {{L"Name", 0x60020000},     {L"Guid", 0x60020001},    {L"Major", 0x60020002},
                                    {L"Minor", 0x60020003},    {L"FullPath", 0x60020004}, {L"IsBroken", 0x60020005},
                                    {L"Description", 0x60020006}, {L"Type", 0x60020007}};

HRESULT Failed() { return DISP_E_EXCEPTION; }

// The IDE hands out one object per project and per component, so that the
// add-in can tell them apart by COM identity. Here that object lives while
// someone holds it, which is all such a comparison can see.
std::map<const void*, ScriptedObject*>& Held() {
  static std::map<const void*, ScriptedObject*> held;
  return held;
}

template <typename View, typename Item>
ScriptedObject* ViewOf(Item item) {
  if (!item) return nullptr;
  const auto found = Held().find(item.get());
  if (found != Held().end()) {
    found->second->AddRef();
    return found->second;
  }
  auto* view = new View(std::move(item));
  Held()[view->Target()] = view;
  return view;
}

class Reference : public ScriptedObject {
 public:
  explicit Reference(std::shared_ptr<platform::Reference> reference)
      : ScriptedObject({std::begin(kReferenceMembers), std::end(kReferenceMembers)}, {}),
        reference_(std::move(reference)) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args&, VARIANT* result) override {
    const platform::Reference& r = *reference_;
    switch (id) {
      case 0x60020000: return Text(r.Name(), result);
      case 0x60020001: return Text(r.Guid(), result);
      case 0x60020002: return Number(r.Major(), result);
      case 0x60020003: return Number(r.Minor(), result);
      case 0x60020004: return Text(r.FullPath(), result);
      case 0x60020005: {
        const rt::Result<bool> broken = r.IsBroken();
        return broken.ok() ? ReturnBool(result, *broken) : Failed();
      }
      case 0x60020006: return Text(r.Description(), result);
      case 0x60020007: return Number(r.Type(), result);
      default: return DISP_E_MEMBERNOTFOUND;
    }
  }
  static HRESULT Text(const rt::Result<std::string>& text, VARIANT* result) {
    return text.ok() ? ReturnText(result, Widen(*text)) : Failed();
  }
  static HRESULT Number(const rt::Result<int>& number, VARIANT* result) {
    return number.ok() ? ReturnLong(result, *number) : Failed();
  }

  std::shared_ptr<platform::Reference> reference_;
};

class Component : public ScriptedObject {
 public:
  explicit Component(platform::ComponentPtr component)
      : ScriptedObject({{L"Name", kComponentName}, {L"Type", kComponentType}}, {}), component_(std::move(component)) {}
  ~Component() override { Held().erase(Target()); }
  const void* Target() const override { return component_.get(); }

 private:
  HRESULT Call(DISPID id, WORD, const Args&, VARIANT* result) override {
    if (id == kComponentName) return ReturnText(result, Widen(component_->Name()));
    if (id == kComponentType) return ReturnLong(result, component_->Type());
    return DISP_E_MEMBERNOTFOUND;
  }

  platform::ComponentPtr component_;
};

template <typename Item, typename NameOf>
std::vector<std::wstring> Names(const std::vector<Item>& items, NameOf nameOf) {
  std::vector<std::wstring> names;
  for (const Item& item : items) names.push_back(Widen(nameOf(*item)));
  return names;
}

// VBComponents, with AddFile (0x16) and Remove (0xB) as the notes number them.
class Components : public Collection {
 public:
  Components(platform::ProjectPtr project, std::vector<platform::ComponentPtr> items)
      : Collection({0, 0xA}, Names(items, [](const platform::VBComponent& c) { return c.Name(); }),
                   [items](size_t i) { return NewComponent(items[i]); }, {{L"AddFile", 0x16}, {L"Remove", 0xB}}),
        project_(std::move(project)) {}

 private:
  HRESULT CallMore(DISPID id, WORD, const Args& args, VARIANT* result) override {
    if (id == 0x16) {
      const std::optional<std::wstring> path = args.empty() ? std::nullopt : TextArg(args, 0);
      if (!path) return DISP_E_TYPEMISMATCH;
      const auto added = project_->AddComponentFromFile(Narrow(*path));
      return added.ok() ? ReturnObject(result, NewComponent(*added)) : Failed();
    }
    if (id == 0xB) {
      const ScriptedObject* target = args.empty() ? nullptr : ObjectArg(args, 0);
      for (const platform::ComponentPtr& component : project_->VBComponents()) {
        if (target != nullptr && component.get() == target->Target())
          return project_->RemoveComponent(*component).ok() ? S_OK : Failed();
      }
      return DISP_E_TYPEMISMATCH;
    }
    return DISP_E_MEMBERNOTFOUND;
  }

  platform::ProjectPtr project_;
};

ScriptedObject* NewComponents(const platform::ProjectPtr& project) {
  return new Components(project, project->VBComponents());
}

ScriptedObject* NewReferences(const platform::ProjectPtr& project) {
  auto items = project->References();
  auto names = Names(items, [](const platform::Reference& r) { return r.Name().value_or(""); });
  return new Collection({0, 0x60020003}, std::move(names), [items](size_t i) { return new Reference(items[i]); });
}

class Project : public ScriptedObject {
 public:
  explicit Project(platform::ProjectPtr project)
      : ScriptedObject({{L"Name", kName},
                        {L"FileName", kFileName},
                        {L"References", kReferences},
                        {L"CompatibleOleServer", kCompatibleOleServer},
                        {L"Type", kType},
                        {L"VBComponents", kVBComponents},
                        {L"BuildFileName", kBuildFileName},
                        {L"SaveAs", kSaveAs}},
                       {kIidVBProject}),
        project_(std::move(project)) {}
  ~Project() override { Held().erase(Target()); }
  const void* Target() const override { return project_.get(); }

 private:
  HRESULT Call(DISPID id, WORD flags, const Args& args, VARIANT* result) override {
    switch (id) {
      case kName: return ReturnText(result, Widen(project_->Name()));
      case kFileName: return ReturnText(result, Widen(project_->FileName()));
      case kType: return ReturnLong(result, project_->Type());
      case kBuildFileName: return ReturnText(result, Widen(project_->BuildFileName()));
      case kVBComponents: return ReturnObject(result, NewComponents(project_));
      case kReferences: return ReturnObject(result, NewReferences(project_));
      case kSaveAs: {
        const std::optional<std::wstring> path = args.empty() ? std::nullopt : TextArg(args, 0);
        if (!path) return DISP_E_TYPEMISMATCH;
        return project_->SaveAs(Narrow(*path)).ok() ? S_OK : Failed();
      }
      case kCompatibleOleServer: {
        if (!IsPut(flags)) return ReturnText(result, Widen(project_->CompatibleOleServer()));
        const std::optional<std::wstring> path = args.empty() ? std::nullopt : TextArg(args, args.size() - 1);
        if (!path) return DISP_E_TYPEMISMATCH;
        return project_->SetCompatibleOleServer(Narrow(*path)).ok() ? S_OK : Failed();
      }
      default: return DISP_E_MEMBERNOTFOUND;
    }
  }

  platform::ProjectPtr project_;
};

}  // namespace

ScriptedObject* NewProjects(std::shared_ptr<IdeState> state) {
  auto items = state->projects->VBProjects();
  auto names = Names(items, [](const platform::VBProject& p) { return p.Name(); });
  return new Collection({0, 0xA}, std::move(names),
                        [items](size_t i) { return NewProject(items[i]); });
}

ScriptedObject* NewProject(platform::ProjectPtr project) { return ViewOf<Project>(std::move(project)); }

ScriptedObject* NewComponent(platform::ComponentPtr component) { return ViewOf<Component>(std::move(component)); }

}  // namespace sentrune::testing::ide
