// `sentrune inspect`: one component's type library as the viewer's tree, as
// JSON, as the XML export or as IDL.
#include <ostream>

#include "commands.h"
#include "read_model.h"
#include "runtime/text.h"
#include "session.h"
#include "typelib/parse_tlb.h"
#include "typelib/tlb_idl.h"
#include "typelib/tlb_json.h"

namespace sentrune::cli {
namespace {

struct InspectArgs {
  std::string file;
  bool json = false;
  bool idl = false;
  CLI::Option* xml = nullptr;
  std::string xmlOut;
};

void PrintTree(std::ostream& out, const std::vector<platform::TreeNode>& nodes, size_t depth) {
  for (const platform::TreeNode& node : nodes) {
    out << std::string(depth * 2, ' ') << node.text << '\n';
    PrintTree(out, node.children, depth + 1);
  }
}

void WriteXml(Session& session, const clsParseTLB& model, const std::string& out) {
  std::string target;
  if (!out.empty()) {
    const rt::Result<std::string> path = session.ToWindowsPath(out);
    if (!path.ok()) return session.Fail(path.error().description);
    target = *path;
  }
  const std::string written = model.BuildXML(target);
  if (written.empty())
    return session.Stop((out.empty() ? session.ToHostPath(model.FilePath()) + ".xml" : out) + ": was not written");
  session.out << session.ToHostPath(written) << '\n';
}

void WriteIdl(Session& session, const clsParseTLB& model, const std::string& argument) {
  const rt::Result<platform::TlbLibrary> lib = session.state().platform.typelibs.Load(model.FilePath());
  if (!lib.ok()) return session.Stop(argument + ": " + lib.error().description);
  const rt::Result<std::string> idl = TypeLibIdl(*lib);
  if (!idl.ok()) return session.Stop(argument + ": no IDL: " + idl.error().description);
  // widl copies string bytes as they stand, and the library's strings are ANSI.
  session.out << rt::Utf8ToCp1252(*idl);
}

void Inspect(Session& session, const InspectArgs& args) {
  if (!session.Ready()) return;
  clsParseTLB model(session.state());
  if (!ReadModel(session, args.file, model)) return;
  if (args.json) {
    session.out << TypeLibJson(model) << '\n';
  } else if (args.xml->count() > 0) {
    WriteXml(session, model, args.xmlOut);
  } else if (args.idl) {
    WriteIdl(session, model, args.file);
  } else {
    std::vector<platform::TreeNode> tree;
    model.BuildTree(tree);
    PrintTree(session.out, tree, 0);
  }
}

}  // namespace

void SetUpInspect(CLI::App& command, Session& session) {
  command.footer(
      "FILE is a .dll, .ocx, .exe, .tlb or .olb; FILE\\N reads TYPELIB resource N.\n"
      "--xml writes FILE.xml (or OUT) and prints its name; --idl prints IDL (Windows-1252) that widl compiles.");
  InspectArgs& args = RunWith(command, session, Inspect);
  command.add_option("file", args.file, "The component file")->required();
  auto* json = command.add_flag("--json", args.json, "Print the model as JSON");
  args.xml = command.add_option("--xml", args.xmlOut, "Write the tree as XML (to OUT)")
                 ->expected(0, 1)
                 ->type_name("[OUT]");
  auto* idl = command.add_flag("--idl", args.idl, "Print the library as IDL");
  json->excludes(args.xml)->excludes(idl);
  args.xml->excludes(idl);
}

}  // namespace sentrune::cli
