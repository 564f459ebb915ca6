#include "scripted_ide_projects.h"

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
  kComponentName = 0x30,
  kComponentType = 0x31,
};

// A Reference's properties, each failing as the headless reference fails.
const Member kReferenceMembers[] = {{L"Name", 0x60020000},     {L"Guid", 0x60020001},    {L"Major", 0x60020002},
                                    {L"Minor", 0x60020003},    {L"FullPath", 0x60020004}, {L"IsBroken", 0x60020005},
                                    {L"Description", 0x60020006}, {L"Type", 0x60020007}};

HRESULT Failed() { return DISP_E_EXCEPTION; }

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

ScriptedObject* NewComponents(const platform::ProjectPtr& project) {
  auto items = project->VBComponents();
  auto names = Names(items, [](const platform::VBComponent& c) { return c.Name(); });
  return new Collection({0, 0xA}, std::move(names), [items](size_t i) { return NewComponent(items[i]); });
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
                        {L"BuildFileName", kBuildFileName}},
                       {kIidVBProject}),
        project_(std::move(project)) {}
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

ScriptedObject* NewProject(platform::ProjectPtr project) {
  return project ? new Project(std::move(project)) : nullptr;
}

ScriptedObject* NewComponent(platform::ComponentPtr component) {
  return component ? new Component(std::move(component)) : nullptr;
}

}  // namespace sentrune::testing::ide
