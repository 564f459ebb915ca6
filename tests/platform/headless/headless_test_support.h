#pragma once
// Shared pieces of the headless IDE tests: fixture files and sinks that
// write down what they heard.
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/ide.h"

namespace sentrune::headless::test {

inline std::string FixtureBytes(const std::string& name) {
  std::ifstream in(std::string(SENTRUNE_SOURCE_DIR) + "/tests/fixtures/vbp/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A component source file as the IDE writes one.
inline std::string Source(const std::string& vbName, const std::string& header = "VERSION 1.0 CLASS\r\n") {
  return header + "Attribute VB_Name = \"" + vbName + "\"\r\nOption Explicit\r\n";
}

// Every event as one line of text, so a test compares what arrived in order.
class Recorder : public platform::VBProjectsEventsSink,
                 public platform::VBComponentsEventsSink,
                 public platform::FileControlEventsSink,
                 public platform::CommandBarEventsSink {
 public:
  std::vector<std::string> heard;
  bool cancelWrites = false;

  void ItemAdded(const platform::ProjectPtr& p) override { Heard("ProjectAdded " + p->Name()); }
  void ItemRemoved(const platform::ProjectPtr& p) override { Heard("ProjectRemoved " + p->Name()); }
  void ItemRenamed(const platform::ProjectPtr& p, const std::string& old) override {
    Heard("ProjectRenamed " + old + " -> " + p->Name());
  }
  void ItemActivated(const platform::ProjectPtr& p) override { Heard("ProjectActivated " + p->Name()); }
  void ItemAdded(const platform::ComponentPtr& c) override { Heard("Added " + c->Name()); }
  void ItemRemoved(const platform::ComponentPtr& c) override { Heard("Removed " + c->Name()); }
  void ItemSelected(const platform::ComponentPtr& c) override { Heard("Selected " + c->Name()); }
  void ItemActivated(const platform::ComponentPtr& c) override { Heard("Activated " + c->Name()); }
  void AfterAddFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    Heard("AfterAddFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterRemoveFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    Heard("AfterRemoveFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterWriteFile(const platform::ProjectPtr& p, int type, const std::string& file, int16_t result) override {
    Heard("AfterWriteFile " + p->Name() + " " + std::to_string(type) + " " + file + " " + std::to_string(result));
  }
  void RequestWriteFile(const platform::ProjectPtr& p, const std::string& file, bool& cancel) override {
    Heard("RequestWriteFile " + p->Name() + " " + file);
    cancel = cancelWrites;
  }
  void Click(const platform::ControlPtr& control, bool& handled, bool&) override {
    Heard("Click " + control->Caption());
    handled = true;
  }

 private:
  void Heard(std::string line) { heard.push_back(std::move(line)); }
};

}  // namespace sentrune::headless::test
