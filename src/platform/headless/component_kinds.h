#pragma once
// The kinds of component a project file names, one per key, and what the
// IDE learns from a component's source file.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrune::headless {

struct ComponentKind {
  std::string_view key;        // the project file's key ("Class")
  std::string_view extension;  // the source file's extension, lower case
  int componentType;           // vbext_ComponentType
  int fileType;                // vbext_FileType
  bool namedLine;              // value is "Name; file"
  bool quotedValue;            // value is "file" in quotes
  bool vbSource;               // a text file with an "Attribute VB_Name" line
  std::string_view companion;  // extension of the binary companion, if any
};

// Keys compare without regard to case; nullptr when the key names no
// component.
const ComponentKind* KindForKey(std::string_view key);
// Every key that names a component.
std::vector<std::string_view> ComponentKeys();
// The kind VBComponents.AddFile gives a file of this extension (".cls").
const ComponentKind* KindForExtension(std::string_view extension);

struct SourceFacts {
  std::optional<std::string> vbName;  // UTF-8
  bool mdiForm = false;
};

// Reads the component's name from its "Attribute VB_Name = "..."" line and
// whether a form is an MDI form. `bytes` are the file's Windows-1252 bytes.
SourceFacts ReadSourceFacts(std::string_view bytes);

}  // namespace sentrune::headless
