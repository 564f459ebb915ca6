#pragma once
// The values of "Reference=" and "Object=" lines of a project file.
//   type library: *\G{guid}#major.minor#lcid#path#description
//   project:      *\A<path of the other project file>
//   control:      {guid}#major.minor#lcid; file.ocx   (or a project as above)
// Versions are hexadecimal ("#d.0#" is 13.0). Parsing never fails: parts
// that are missing come back empty or zero, so a damaged line still gives a
// (broken) reference rather than an error.
#include <string>
#include <string_view>

namespace sentrune::headless {

struct ReferenceLine {
  bool recognised = false;  // began with *\G or *\A
  bool isProject = false;
  std::string guid;         // "{...}" as written
  int major = 0;
  int minor = 0;
  std::string path;         // as written, relative or absolute
  std::string description;
};

// `value` is UTF-8.
ReferenceLine ParseReferenceValue(std::string_view value);
// The value the IDE writes for a type library reference (locale 0).
std::string FormatTypeLibReference(const std::string& guid, int major, int minor,
                                   const std::string& path, const std::string& description);

struct ObjectLine {
  bool isProject = false;
  std::string guid;
  std::string version;  // "2.0" as written; may be absent
  int major = 0;        // the version read as a reference's is (hexadecimal)
  int minor = 0;
  std::string file;     // the control's file name, or the project's path
};

ObjectLine ParseObjectValue(std::string_view value);

}  // namespace sentrune::headless
