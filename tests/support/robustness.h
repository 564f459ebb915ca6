#pragma once
// Damaged input for a binary reader: every truncation of a good input, random
// byte changes from a fixed seed, and the inputs a fuzzer saved. A crash or an
// overread stops the test (run under the sanitizers for full effect); a read
// that does not end within a minute aborts, naming its input.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "support/host_files.h"

namespace sentrune::testing {

// Aborts the test program, naming the input, when one read outlasts a minute.
// A thread rather than a signal, so that it works alike on every host.
class Watchdog {
 public:
  Watchdog() : thread_([this] { Watch(); }) {}
  ~Watchdog() {
    {
      std::lock_guard lock(mutex_);
      stop_ = true;
    }
    wake_.notify_one();
    thread_.join();
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  void Arm(std::string what) {
    std::lock_guard lock(mutex_);
    what_ = std::move(what);
    deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    armed_ = true;
    wake_.notify_one();
  }
  void Disarm() {
    std::lock_guard lock(mutex_);
    armed_ = false;
  }

 private:
  void Watch() {
    std::unique_lock lock(mutex_);
    while (!stop_) {
      if (armed_ && std::chrono::steady_clock::now() >= deadline_) {
        std::fprintf(stderr, "the reader hangs on %s\n", what_.c_str());
        std::abort();
      }
      if (armed_) wake_.wait_until(lock, deadline_);
      else wake_.wait(lock);
    }
  }
  std::mutex mutex_;
  std::condition_variable wake_;
  std::string what_;
  std::chrono::steady_clock::time_point deadline_;
  bool armed_ = false, stop_ = false;
  std::thread thread_;  // last, so that it starts after the rest exists
};

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
  Watchdog watchdog;
  auto readAs = [&](const std::string& input, std::span<const uint8_t> bytes) {
    SCOPED_TRACE(input);
    watchdog.Arm(input);
    std::optional<std::string> summary = read(bytes);
    watchdog.Disarm();
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
