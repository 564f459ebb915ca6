#pragma once
// clsParseTLB: one component's type library, read once into a flat,
// text-keyed model that comparison, the tree, XML and JSON work on alone.
#include <cstdint>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/typelib_source.h"
#include "platform/ui.h"
#include "runtime/datetime.h"
#include "runtime/keyed_collection.h"
#include "typelib/tlb_difference.h"
#include "typelib/tlb_records.h"

namespace sentrune {

// The outcome of a read that shows no message box: the error number (0 on
// success) and the message, style and title the box would have shown.
struct TypeLibReadResult {
  int32_t number = 0;
  std::string message;
  int style = 0;
  std::string title;
  std::string description;  // the error's own description
  bool trapped = false;     // an error was caught (not the missing-file check)
  bool ok() const { return number == 0; }
};

class clsParseTLB {
 public:
  explicit clsParseTLB(AddinState& state) : state_(&state) {}

  // Reads a component file (a "file.dll\N" suffix selects TYPELIB resource
  // N); 0 on success, 53 when the file is missing, else the failure's number.
  // Failures are shown through lfncMsgBoxEX.
  int32_t ParseTypeLib(const std::string& FileName);
  // The same read, handing the failure back instead of showing it.
  TypeLibReadResult ReadTypeLib(const std::string& FileName);

  const std::string& Library() const { return library_; }
  const std::string& HelpString() const { return helpString_; }
  const std::string& FilePath() const { return filePath_; }
  const rt::DateTime& FileDate() const { return fileDate_; }
  const std::string& GUID() const { return guid_; }
  const std::string& TLBVersionString() const { return tlbVersion_; }
  const std::string& FileVersionString() const { return fileVersion_; }
  const EnumOrTypeCollection& Enums() const { return enums_; }
  const EnumOrTypeCollection& Types() const { return types_; }
  const ClassCollection& Classes() const { return classes_; }

  // Every difference as one line of text, this library against `Other`,
  // in the order found. IgnoreMinor skips the library help string and
  // version; ShowDetails adds both values to library-level messages.
  std::vector<std::string> Compare(const clsParseTLB& Other, bool IgnoreMinor, bool ShowDetails) const;
  // The same differences with their pass and kind.
  std::vector<TlbDifference> CompareDetailed(const clsParseTLB& Other, bool IgnoreMinor,
                                             bool ShowDetails) const;

  // Replaces the tree's nodes with the model: one root keyed by FilePath.
  void BuildTree(std::vector<platform::TreeNode>& Tree) const;
  // Writes the tree as XML to FileName (FilePath + ".xml" when empty); the
  // file's name when it exists afterwards, else "".
  std::string BuildXML(const std::string& FileName) const;

 private:
  struct Reader;

  void Clear();

  AddinState* state_;
  std::string library_;
  std::string helpString_;
  std::string filePath_;
  rt::DateTime fileDate_;
  std::string guid_;
  std::string tlbVersion_;
  std::string fileVersion_;
  EnumOrTypeCollection enums_;
  EnumOrTypeCollection types_;
  ClassCollection classes_;
};

}  // namespace sentrune
