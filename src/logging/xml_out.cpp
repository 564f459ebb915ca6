#include "logging/xml_out.h"

#include "runtime/text.h"

namespace sentrune {
namespace {

constexpr size_t kIndentStep = 3;

// The key's last part, blanks made into "_".
std::string Tag(const std::string& key) {
  const size_t slash = key.rfind('\\');
  std::string tag = slash == std::string::npos ? key : key.substr(slash + 1);
  for (char& c : tag)
    if (c == ' ') c = '_';
  return tag;
}

void WriteChildren(const platform::TreeNode& node, size_t depth, std::vector<std::string>& lines) {
  const std::string indent(depth * kIndentStep, ' ');
  for (const platform::TreeNode& child : node.children) {
    const std::string tag = Tag(child.key);
    lines.push_back(indent + "<" + tag + ">");
    if (child.children.empty()) {
      lines.push_back(indent + child.text);
    } else {
      WriteChildren(child, depth + 1, lines);
    }
    lines.push_back(indent + "</" + tag + ">");
  }
}

// Everything outside printable ASCII becomes "#", one per character.
std::string Sanitize(const std::string& line) {
  std::string out;
  for (char32_t c : rt::ToCodePoints(line)) out += c < 32 || c >= 128 ? '#' : static_cast<char>(c);
  return out;
}

}  // namespace

std::vector<std::string> XmlLines(const std::vector<platform::TreeNode>& roots) {
  std::vector<std::string> lines;
  const std::string indent(kIndentStep, ' ');
  for (const platform::TreeNode& root : roots) {
    const std::string tag = Tag(root.key);
    lines.push_back(indent + "<" + tag + ">");
    WriteChildren(root, 2, lines);
    lines.push_back(indent + "</" + tag + ">");
  }
  return lines;
}

rt::Status XMLOut(platform::FileSystem& fs, const std::vector<platform::TreeNode>& roots,
                  const std::string& FileName) {
  if (FileName.empty()) return rt::Status::Ok();
  const std::vector<std::string> lines = XmlLines(roots);
  if (lines.empty()) return rt::Status::Ok();
  std::string bytes;
  for (const std::string& line : lines) bytes += Sanitize(line) + "\r\n";
  return fs.WriteFile(FileName, bytes);
}

}  // namespace sentrune
