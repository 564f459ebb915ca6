#pragma once
// Damaged input for a binary reader: every truncation of a good input, random
// byte changes from a fixed seed, and the inputs a fuzzer saved. A crash or an
// overread stops the test (run under the sanitizers for full effect); a read
// that does not end within a minute aborts, naming its input.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "support/host_files.h"

namespace sentrune::testing {

// Reads the bytes and checks what came out: a summary of what was decoded,
// or nothing when the reader refused the bytes (with its own error).
using Reader = std::function<std::optional<std::string>(std::span<const uint8_t>)>;

struct Damage {
  int rounds = 1000;        // random changes per good input
  unsigned maxChanges = 8;  // bytes changed per round, at least one
  size_t hotBytes = 0;      // when set, half the changes land in the first hotBytes
  std::string savedInputs;  // the folder of tests/fixtures/fuzz the fuzzer saves into
};

struct DamageSeen {
  int changedRead = 0, changedRefused = 0, saved = 0;
};

// Every good input must decode; a truncation is refused or decodes as the
// whole does (nothing invented from a cut file).
inline DamageSeen ExpectRobust(const Reader& read, const std::vector<std::vector<uint8_t>>& good,
                               const Damage& damage) {
  static char reading[128];
  signal(SIGALRM, [](int) {
    (void)!write(2, reading, strlen(reading));
    abort();
  });
  auto readAs = [&](const std::string& input, std::span<const uint8_t> bytes) {
    SCOPED_TRACE(input);
    snprintf(reading, sizeof reading, "the reader hangs on %s\n", input.c_str());
    alarm(60);
    std::optional<std::string> summary = read(bytes);
    alarm(0);
    return summary;
  };
  DamageSeen seen;
  std::mt19937 random(20240601);
  for (size_t g = 0; g < good.size(); ++g) {
    const std::vector<uint8_t>& whole = good[g];
    const std::string name = "good input " + std::to_string(g);
    const std::optional<std::string> expected = readAs(name, whole);
    if (!expected) ADD_FAILURE() << name << " does not decode";
    for (size_t cut = 0; cut < whole.size(); cut += 97) {
      // A copy of exactly `cut` bytes, so that the sanitizers see any overread.
      const std::vector<uint8_t> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(cut));
      const auto got = readAs(name + " cut to " + std::to_string(cut), bytes);
      EXPECT_TRUE(!got || got == expected) << name << " cut to " << cut << " decodes differently";
    }
    const size_t hot = damage.hotBytes ? std::min(damage.hotBytes, whole.size()) : whole.size();
    for (int round = 0; round < damage.rounds; ++round) {
      std::vector<uint8_t> bytes = whole;
      for (auto i = 1 + random() % damage.maxChanges; i > 0; --i)
        bytes[random() % (random() % 2 ? hot : bytes.size())] = static_cast<uint8_t>(random());
      const bool decoded = readAs(name + " changed in round " + std::to_string(round), bytes).has_value();
      ++(decoded ? seen.changedRead : seen.changedRefused);
    }
  }
  std::error_code missing;
  const auto folder = FixtureFolder() / "fuzz" / damage.savedInputs;
  for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
    if (!entry.is_regular_file()) continue;
    readAs("saved input " + entry.path().filename().string(), ReadHostBytes(entry.path()));
    ++seen.saved;
  }
  return seen;
}

}  // namespace sentrune::testing
