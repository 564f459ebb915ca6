#pragma once
// What the tracking tests stand on: the add-in over fakes, a small IDE whose
// projects can be opened, activated and closed, and a look into the bytes of
// a tracking database.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/ide.h"
#include "support/test_addin.h"
#include "tracking/sqlite_image.h"

namespace sentrune::tracking_test {

class FakeComponent : public platform::VBComponent {
 public:
  explicit FakeComponent(std::string name) : name_(std::move(name)) {}
  std::string Name() const override { return name_; }
  int Type() const override { return platform::vbext_ct_ClassModule; }
  std::vector<std::string> FileNames() const override { return {}; }
  uintptr_t Identity() const override { return reinterpret_cast<uintptr_t>(this); }

 private:
  std::string name_;
};

class FakeProject : public platform::VBProject {
 public:
  FakeProject(std::string name, std::string fileName) : name_(std::move(name)), fileName_(std::move(fileName)) {}

  std::shared_ptr<FakeComponent> Add(const std::string& name) {
    components_.push_back(std::make_shared<FakeComponent>(name));
    return components_.back();
  }

  std::string Name() const override { return name_; }
  int Type() const override { return platform::vbext_pt_ActiveXDll; }
  std::string FileName() const override { return fileName_; }
  std::string BuildFileName() const override { return {}; }
  std::string CompatibleOleServer() const override { return {}; }
  rt::Status SetCompatibleOleServer(const std::string&) override { return {}; }
  std::vector<std::shared_ptr<platform::Reference>> References() override { return {}; }
  rt::Result<std::shared_ptr<platform::Reference>> AddReferenceFromFile(const std::string&) override {
    return rt::MakeError(rt::errnum::kFileNotFound);
  }
  std::vector<platform::ComponentPtr> VBComponents() override { return {components_.begin(), components_.end()}; }
  rt::Result<platform::ComponentPtr> AddComponentFromFile(const std::string&) override {
    return rt::MakeError(rt::errnum::kFileNotFound);
  }
  rt::Status RemoveComponent(const platform::VBComponent&) override { return {}; }
  rt::Status Save() override { return {}; }
  rt::Status SaveAs(const std::string&) override { return {}; }

 private:
  std::string name_;
  std::string fileName_;
  std::vector<std::shared_ptr<FakeComponent>> components_;
};

class NoEvents : public platform::Events {
 public:
  std::unique_ptr<platform::Subscription> VBProjectsEvents(platform::VBProjectsEventsSink&) override { return {}; }
  std::unique_ptr<platform::Subscription> VBComponentsEvents(const platform::ProjectPtr&,
                                                             platform::VBComponentsEventsSink&) override {
    return {};
  }
  std::unique_ptr<platform::Subscription> FileControlEvents(const platform::ProjectPtr&,
                                                            platform::FileControlEventsSink&) override {
    return {};
  }
  std::unique_ptr<platform::Subscription> CommandBarEvents(const platform::ControlPtr&,
                                                           platform::CommandBarEventsSink&) override {
    return {};
  }
};

// Opening a project makes it the active one; closing it leaves its objects
// with the test, no longer usable.
class FakeVbe : public platform::VBE {
 public:
  std::shared_ptr<FakeProject> Open(const std::string& name, const std::string& fileName) {
    auto project = std::make_shared<FakeProject>(name, fileName);
    projects_.push_back(project);
    active_ = project;
    return project;
  }
  void Activate(const platform::ProjectPtr& project) { active_ = project; }
  void Close(const platform::ProjectPtr& project) {
    std::erase(projects_, project);
    if (active_ == project) active_ = projects_.empty() ? nullptr : projects_.front();
  }

  std::vector<platform::ProjectPtr> VBProjects() override { return projects_; }
  platform::ProjectPtr ActiveVBProject() override { return active_; }
  platform::ComponentPtr SelectedVBComponent() override { return {}; }
  std::shared_ptr<platform::Window> ActiveWindow() override { return {}; }
  std::shared_ptr<platform::CommandBars> CommandBars() override { return {}; }
  platform::Events& Events() override { return events_; }

 private:
  std::vector<platform::ProjectPtr> projects_;
  platform::ProjectPtr active_;
  NoEvents events_;
};

// The rows a query gives on a database file's bytes, every value as text.
inline std::vector<std::vector<std::string>> Query(const std::string& bytes, const std::string& sql) {
  SqliteImage db = SqliteImage::Load(bytes, "inspected");
  Statement statement(db, sql);
  std::vector<std::vector<std::string>> rows;
  while (statement.Step()) {
    std::vector<std::string>& row = rows.emplace_back();
    for (int column = 0; column < statement.ColumnCount(); ++column) row.push_back(statement.Text(column));
  }
  return rows;
}

}  // namespace sentrune::tracking_test
