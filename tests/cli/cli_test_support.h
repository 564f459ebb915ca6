#pragma once
// Runs the command-line host in-process over a temporary add-in folder.
#include <filesystem>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "cli_main.h"

namespace sentrune::testing {

struct CliRun {
  int status = 0;
  std::string out;
  std::string err;
};

class CliHome {
 public:
  CliHome() {
    root_ = std::filesystem::temp_directory_path() /
            ("sentrune-cli-" + std::to_string(reinterpret_cast<uintptr_t>(this)) + "-" +
             std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    std::filesystem::remove_all(root_);
    std::filesystem::create_directories(root_);
  }
  ~CliHome() { std::filesystem::remove_all(root_); }
  const std::filesystem::path& root() const { return root_; }
  std::filesystem::path home() const { return root_ / "home"; }

  // Runs `sentrune --home <home> --no args...`.
  CliRun Run(std::vector<std::string> args, const std::string& input = {}) const {
    std::vector<std::string> all = {"sentrune", "--home", home().string(), "--no"};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<const char*> argv;
    for (const std::string& a : all) argv.push_back(a.c_str());
    std::istringstream in(input);
    std::ostringstream out, err;
    CliRun run;
    run.status = cli::Run(static_cast<int>(argv.size()), argv.data(), in, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
  }

 private:
  std::filesystem::path root_;
};

}  // namespace sentrune::testing
