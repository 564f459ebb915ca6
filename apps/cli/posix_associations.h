#pragma once
// The shell's FindExecutable as Windows answers it inside a Wine prefix,
// from the prefix's own registry: extension -> file class -> the program of
// its open command. Running programs is left to the host's processes.
#include "platform/env.h"
#include "platform/registry.h"

namespace sentrune::cli {

class PrefixAssociations : public platform::Processes {
 public:
  // Every argument must outlive this object.
  PrefixAssociations(platform::Processes& base, platform::FileSystem& files, platform::Registry& registry)
      : base_(base), files_(files), registry_(registry) {}

  rt::Result<int> Run(const std::string& commandLine) override { return base_.Run(commandLine); }
  rt::Status Start(const std::string& commandLine) override { return base_.Start(commandLine); }
  int FindExecutable(const std::string& documentPath, std::string& program) override;

 private:
  std::string Default(const std::string& key);

  platform::Processes& base_;
  platform::FileSystem& files_;
  platform::Registry& registry_;
};

}  // namespace sentrune::cli
