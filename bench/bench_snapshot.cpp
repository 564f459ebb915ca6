// `sentrune --yes snapshot` of a project of many small classes, against the
// plain recursive copy of the same folder: the snapshot should cost about
// what copying the files costs, and grow with their number, not its square.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli_main.h"
#include "posix_host.h"

namespace {

namespace fs = std::filesystem;

// This machine is shared: other work only ever slows a run down, so the
// fastest of several repetitions is the figure to compare.
double Fastest(const std::vector<double>& runs) { return *std::min_element(runs.begin(), runs.end()); }

void WriteFile(const fs::path& file, const std::string& text) { std::ofstream(file, std::ios::binary) << text; }

// A temporary folder with "home" (the add-in's folder) and "Big\Big.vbp"
// naming `count` classes of one line each; removed with everything in it.
struct BigProject {
  explicit BigProject(int count)
      : root(fs::temp_directory_path() / ("sentrune-bench-" + std::to_string(getpid()) + "-" + std::to_string(count))) {
    fs::remove_all(root);
    fs::create_directories(root / "home");
    fs::create_directories(folder());
    std::string vbp = "Type=Exe\r\nName=\"Big\"\r\n";
    for (int i = 0; i < count; ++i) {
      const std::string name = "C" + std::to_string(i);
      vbp += "Class=" + name + "; " + name + ".cls\r\n";
      WriteFile(folder() / (name + ".cls"), "Attribute VB_Name = \"" + name + "\"\r\n");
    }
    WriteFile(folder() / "Big.vbp", vbp);
  }
  ~BigProject() { fs::remove_all(root); }
  fs::path folder() const { return root / "Big"; }

  // Whatever the last run left beside the project besides its own files.
  void RemoveCopies() const {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder()))
      if (entry.is_directory()) fs::remove_all(entry.path());
    fs::remove_all(root / "copy");
  }

  int Snapshot() const {
    const std::string home = (root / "home").string(), project = (folder() / "Big.vbp").string();
    const char* argv[] = {"sentrune", "--home", home.c_str(), "--yes", "snapshot", project.c_str()};
    std::istringstream in;
    std::ostringstream out, err;
    sentrune::cli::PosixHost host;
    return sentrune::cli::Run(host, static_cast<int>(std::size(argv)), argv, in, out, err);
  }

  fs::path root;
};

void BM_Snapshot(benchmark::State& state) {
  const BigProject project(static_cast<int>(state.range(0)));
  // The first run also makes the add-in's folder and the tracking database.
  if (project.Snapshot() != 0) return state.SkipWithError("the snapshot failed");
  for (auto _ : state) {
    state.PauseTiming();
    project.RemoveCopies();
    state.ResumeTiming();
    if (project.Snapshot() != 0) return state.SkipWithError("the snapshot failed");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Snapshot)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond)->Repetitions(3)->ComputeStatistics(
    "min", Fastest);

// The yardstick: the project folder copied as `cp -r` copies it.
void BM_CopyFolder(benchmark::State& state) {
  const BigProject project(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    project.RemoveCopies();
    state.ResumeTiming();
    fs::copy(project.folder(), project.root / "copy", fs::copy_options::recursive);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CopyFolder)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond)->Repetitions(3)->ComputeStatistics(
    "min", Fastest);

}  // namespace

BENCHMARK_MAIN();
