#include "posix_associations.h"

#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::cli {
namespace {

// The program part of a command line: quoted, or up to its ".exe".
std::string ProgramOf(const std::string& command) {
  const std::string text = rt::Trim(command);
  if (!text.empty() && text[0] == '"') return text.substr(1, text.find('"', 1) - 1);
  const size_t exe = rt::LCase(text).find(".exe");
  return exe == std::string::npos ? text.substr(0, text.find(' ')) : text.substr(0, exe + 4);
}

}  // namespace

int PrefixAssociations::FindExecutable(const std::string& documentPath, std::string& program) {
  constexpr int kFileNotFound = 2, kPathNotFound = 3, kNoAssociation = 31, kFound = 33;
  if (const auto attributes = files_.GetAttributes(documentPath); !attributes.ok())
    return attributes.error().number == rt::errnum::kFileNotFound ? kFileNotFound : kPathNotFound;
  const std::string fileClass = Default(rt::GetExtension(rt::GetFileTitle(documentPath)));
  if (fileClass.empty()) return kNoAssociation;
  program = ProgramOf(Default(fileClass + "\\shell\\open\\command"));
  return program.empty() ? kNoAssociation : kFound;
}

// A key's default value, up to its first NUL; empty when there is none.
std::string PrefixAssociations::Default(const std::string& key) {
  const rt::Result<platform::RegValue> value = registry_.QueryValue(platform::kHkeyClassesRoot, key, "");
  if (!value.ok()) return "";
  const size_t nul = value->data.find('\0');
  return value->data.substr(0, nul);
}

}  // namespace sentrune::cli
