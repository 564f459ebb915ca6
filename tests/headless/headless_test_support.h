#pragma once
// Shared pieces of the headless IDE tests: fixture files and sinks that
// write down what they heard.
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
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

  void ItemAdded(const platform::ProjectPtr& p) override { heard.push_back("ProjectAdded " + p->Name()); }
  void ItemRemoved(const platform::ProjectPtr& p) override { heard.push_back("ProjectRemoved " + p->Name()); }
  void ItemRenamed(const platform::ProjectPtr& p, const std::string& old) override {
    heard.push_back("ProjectRenamed " + old + " -> " + p->Name());
  }
  void ItemActivated(const platform::ProjectPtr& p) override { heard.push_back("ProjectActivated " + p->Name()); }

  void ItemAdded(const platform::ComponentPtr& c) override { heard.push_back("Added " + c->Name()); }
  void ItemRemoved(const platform::ComponentPtr& c) override { heard.push_back("Removed " + c->Name()); }
  void ItemSelected(const platform::ComponentPtr& c) override { heard.push_back("Selected " + c->Name()); }
  void ItemActivated(const platform::ComponentPtr& c) override { heard.push_back("Activated " + c->Name()); }

  void AfterAddFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    heard.push_back("AfterAddFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterRemoveFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    heard.push_back("AfterRemoveFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterWriteFile(const platform::ProjectPtr& p, int type, const std::string& file, int16_t result) override {
    heard.push_back("AfterWriteFile " + p->Name() + " " + std::to_string(type) + " " + file + " " +
                    std::to_string(result));
  }
  void RequestWriteFile(const platform::ProjectPtr& p, const std::string& file, bool& cancel) override {
    heard.push_back("RequestWriteFile " + p->Name() + " " + file);
    cancel = cancelWrites;
  }
  bool cancelWrites = false;

  void Click(const platform::ControlPtr& control, bool& handled, bool&) override {
    heard.push_back("Click " + control->Caption());
    handled = true;
  }
};

}  // namespace sentrune::headless::test
