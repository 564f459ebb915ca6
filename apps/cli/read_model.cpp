#include "read_model.h"

#include "runtime/text.h"
#include "runtime/vb_error.h"
#include "session.h"

namespace sentrune::cli {
namespace {

// The reader's failure in words: the add-in's own text for a file without a
// type library (its first line: the second asks to pick another file in a
// dialog), the reader's description otherwise, less the Windows path it may
// start with, since the file is named already.
std::string Why(const TypeLibReadResult& read, const std::string& path) {
  if (read.number == rt::errnum::kFileNotFound && !read.trapped) return "no such file";
  if (read.number == rt::errnum::kNotATypeLibrary) return read.message.substr(0, read.message.find("\r\n"));
  std::string description = read.description;
  if (description.starts_with(path + ": ")) description.erase(0, path.size() + 2);
  return "its type library cannot be read: " + description;
}

}  // namespace

std::string ForTerminal(const std::string& text) { return rt::Replace(text, "\r\n", "\n"); }

std::string ReadModelAt(Session& session, const std::string& path, const std::string& shownName,
                        clsParseTLB& model) {
  // The reader takes a folder for a missing file.
  const rt::Result<uint32_t> attributes = session.state().files().GetAttributes(path);
  if (attributes.ok() && (*attributes & platform::kAttrDirectory)) return shownName + ": is a folder";
  const TypeLibReadResult read = model.ReadTypeLib(path);
  return read.ok() ? std::string() : shownName + ": " + Why(read, path);
}

bool ReadModel(Session& session, const std::string& argument, clsParseTLB& model) {
  const rt::Result<std::string> path = session.ToWindowsPath(argument);
  const std::string problem =
      path.ok() ? ReadModelAt(session, *path, argument, model) : path.error().description;
  if (!problem.empty()) session.Fail(problem);
  return problem.empty();
}

}  // namespace sentrune::cli
