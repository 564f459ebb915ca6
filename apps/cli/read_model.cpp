#include "read_model.h"

#include "runtime/text.h"
#include "session.h"

namespace sentrune::cli {

std::string ForTerminal(const std::string& text) { return rt::Replace(text, "\r\n", "\n"); }

bool ReadModel(Session& session, const std::string& argument, clsParseTLB& model) {
  const rt::Result<std::string> path = session.ToWindowsPath(argument);
  if (!path.ok()) {
    session.Fail(path.error().description);
    return false;
  }
  const TypeLibReadResult read = model.ReadTypeLib(*path);
  if (!read.ok()) session.Fail(ForTerminal(read.message));
  return read.ok();
}

}  // namespace sentrune::cli
