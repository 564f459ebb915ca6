// clsParseTLB::BuildTree and BuildXML: the model as a tree of nodes whose
// keys are paths under the file's own path, and that tree as XML.
#include <string>
#include <vector>

#include "logging/xml_out.h"
#include "state/msgbox.h"
#include "runtime/vb_format.h"
#include "typelib/parse_tlb.h"

namespace sentrune {
namespace {

using platform::TreeNode;

TreeNode& AddChild(TreeNode& parent, const std::string& name, std::string text) {
  parent.children.push_back({parent.key + "\\" + name, std::move(text), {}});
  return parent.children.back();
}

void AddNoneWhenEmpty(TreeNode& group) {
  if (group.children.empty()) AddChild(group, "None", "None");
}

std::string WithHelp(std::string text, const std::string& help) {
  return help.empty() ? text : text + " '" + help;
}

void AddMembers(TreeNode& group, const MemberCollection& members) {
  for (const auto& entry : members) {
    const clsInterfaceInfo& m = entry.item;
    AddChild(group, m.MemberName, WithHelp(m.MemberName, m.MemberHelp));
  }
  AddNoneWhenEmpty(group);
}

void AddEnums(TreeNode& root, const EnumOrTypeCollection& enums) {
  TreeNode& group = AddChild(root, "Enums", "Enums");
  for (const auto& entry : enums) {
    TreeNode& node = AddChild(group, entry.item.MemberName, entry.item.MemberName);
    for (const auto& member : entry.item.Members) {
      const clsInterfaceInfo& m = member.item;
      AddChild(node, m.MemberName, WithHelp(m.MemberName + " = " + std::to_string(m.MemberValue), m.MemberHelp));
    }
  }
  AddNoneWhenEmpty(group);
}

void AddTypes(TreeNode& root, const EnumOrTypeCollection& types) {
  TreeNode& group = AddChild(root, "Types", "Types");
  for (const auto& entry : types) {
    TreeNode& node = AddChild(group, entry.item.MemberName, entry.item.MemberName);
    for (const auto& member : entry.item.Members)
      AddChild(node, member.item.MemberName, WithHelp(member.item.MemberName, member.item.MemberHelp));
  }
  AddNoneWhenEmpty(group);
}

void AddClasses(TreeNode& root, const ClassCollection& classes) {
  TreeNode& group = AddChild(root, "Classes", "Classes");
  for (const auto& entry : classes) {
    const clsClass& cls = entry.item;
    TreeNode& node = AddChild(group, cls.ClassName, cls.ClassName);
    AddChild(node, "GUID", "GUID: " + cls.ClassGUID);
    AddMembers(AddChild(node, "Properties", "Properties"), cls.Properties);
    AddMembers(AddChild(node, "Methods", "Methods"), cls.Methods);
    AddMembers(AddChild(node, "Events", "Events"), cls.Events);
  }
  AddNoneWhenEmpty(group);
}

}  // namespace

void clsParseTLB::BuildTree(std::vector<TreeNode>& Tree) const {
  Tree.clear();
  TreeNode root{FilePath(), FilePath(), {}};
  AddChild(root, "Library", "Library: " + Library());
  AddChild(root, "HelpString", "HelpString: " + HelpString());
  AddChild(root, "File", "File: " + FilePath());
  AddChild(root, "FileDate", "FileDate: " + rt::Format(FileDate(), "General Date"));
  AddChild(root, "GUID", "GUID: " + GUID());
  AddChild(root, "TLB Version", "TLB Version: " + TLBVersionString());
  AddChild(root, "File Version", "File Version: " + FileVersionString());
  AddEnums(root, Enums());
  AddTypes(root, Types());
  AddClasses(root, Classes());
  Tree.push_back(std::move(root));
}

std::string clsParseTLB::BuildXML(const std::string& FileName) const {
  const std::string output = FileName.empty() ? FilePath() + ".xml" : FileName;
  std::vector<TreeNode> tree;
  BuildTree(tree);
  const rt::Status written = XMLOut(state_->files(), tree, output);
  if (!written) {
    const rt::VbError& e = written.error();
    state_->err.Raise(e.number, "frmAddinMain:XMLOut", e.description);
    lfncMsgBoxEX(*state_, "Error " + std::to_string(e.number) + "\r\n" + e.description, platform::mb::kCritical,
                 "frmAddinMain:XMLOut");
    state_->err.Clear();
  }
  return state_->files().GetAttributes(output).ok() ? output : "";
}

}  // namespace sentrune
