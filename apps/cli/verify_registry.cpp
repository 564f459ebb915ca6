#include "verify_registry.h"

#include <filesystem>
#include <ostream>

#include "platform/posix/posix_env.h"
#include "platform/posix/wine_server_registry.h"

namespace sentrune::cli {

std::unique_ptr<platform::Registry> OpenVerifyRegistry(platform::Env& env, std::ostream* note) {
  auto* posixEnv = dynamic_cast<posix::PosixEnv*>(&env);
  const std::string prefix = posixEnv ? posixEnv->WinePrefix() : std::string();
  std::error_code error;
  if (prefix.empty() || !std::filesystem::is_directory(prefix, error)) {
    if (note) *note << "sentrune: no Wine prefix: every component reads as not registered\n";
    return nullptr;
  }
  rt::Result<std::unique_ptr<platform::Registry>> registry = posix::OpenWinePrefixRegistry(posixEnv->Files(), prefix);
  if (!registry) {
    if (note) *note << "sentrune: no registry: " << registry.error().description << '\n';
    return nullptr;
  }
  return std::move(*registry);
}

}  // namespace sentrune::cli
