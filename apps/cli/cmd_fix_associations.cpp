// `sentrune fix-associations`: the association fixer on the registry the
// host keeps file associations in.
#include <ostream>

#include "commands.h"
#include "files/association_fixer.h"
#include "host_platform.h"
#include "session.h"

namespace sentrune::cli {
namespace {

void FixAssociations(Session& session) {
  if (!session.Ready()) return;
  rt::Result<AssociationRegistry> opened = session.hostEnv().OpenAssociations();
  if (!opened.ok()) return session.Fail(opened.error().description);
  const int32_t changes = lfncFixAssociations(session.state(), *opened->registry, opened->programs.get());
  session.out << changes << (changes == 1 ? " association" : " associations") << " changed in " << opened->where
              << '\n';
}

}  // namespace

void SetUpFixAssociations(CLI::App& command, Session& session) {
  command.footer("Works on " + session.host().Help().registry +
                 " Each class whose open command differs from\n"
                 "\"<program for .vbp>\" \"%1\" is offered for rewriting.");
  command.callback([&session] { FixAssociations(session); });
}

}  // namespace sentrune::cli
