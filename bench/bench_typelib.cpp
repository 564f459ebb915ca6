// Decoding and projecting the largest type library Wine installs: mshtml.tlb,
// about 1.2 MB of MSFT inside a PE image. The target is well under 10 ms.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

#include "platform/portable/msft_reader.h"
#include "platform/portable/pe_image.h"
#include "platform/portable/typelib_projection.h"

namespace {

using namespace sentrune::portable;

// Where Debian installs Wine's 64-bit Windows-side files.
std::optional<std::vector<uint8_t>> ReadMshtml() {
  for (const char* folder : {"/usr/lib/x86_64-linux-gnu/wine/x86_64-windows", "/usr/lib/wine/x86_64-windows"}) {
    std::ifstream in(std::filesystem::path(folder) / "mshtml.tlb", std::ios::binary);
    if (in) return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
  }
  return std::nullopt;
}

void BM_DecodeMshtml(benchmark::State& state) {
  static const auto file = ReadMshtml();
  if (!file) {
    state.SkipWithError("mshtml.tlb of Wine is not installed");
    return;
  }
  for (auto _ : state) {
    auto image = PeImage::Parse(*file);
    auto resource = image->FindResource(ResourceId::Named(kTypeLibResourceType), ResourceId::Number(1));
    auto raw = ReadMsft(*resource);
    if (!raw.ok()) {
      state.SkipWithError(raw.error().description.c_str());
      return;
    }
    benchmark::DoNotOptimize(ProjectLibrary(*raw));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file->size()));
}
BENCHMARK(BM_DecodeMshtml)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
