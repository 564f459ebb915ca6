#pragma once
// The registry the installation verifier reads on this host: a Wine
// prefix's, or none.
#include <iosfwd>
#include <memory>

#include "platform/env.h"
#include "platform/registry.h"

namespace sentrune::cli {

// The registry of the environment's Wine prefix (the --wineprefix folder,
// else the default prefix). The verifier only reads it. Null when the
// environment has no prefix or its registry cannot be read; `note`, when
// given, then hears why in one line.
std::unique_ptr<platform::Registry> OpenVerifyRegistry(platform::Env& env, std::ostream* note);

}  // namespace sentrune::cli
