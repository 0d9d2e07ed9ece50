// How long the live window takes until the picture of a whole tree is on the screen: from the
// program's execution to the last change of its map, as the X server tells a second client, against
// a bare walk by two threads that keeps nothing. And the memory that this takes at its peak.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/support/bare_walker.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "bench/support/screen_damage.h"
#include "tests/support/other_client.h"
#include "tests/support/x_server.h"

namespace {

using Clock = bench::ScreenDamage::Clock;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
/// Where the map lies, and nothing else.
constexpr ui::Rect kMap = {kWidth / 2, 100, kWidth / 2 - 50, kHeight - 200};
constexpr std::size_t kPairs = 9;
constexpr int kBareThreads = 2;
/// A window in which nothing has changed for so long shows all.
constexpr std::chrono::milliseconds kQuiet{1000};
constexpr std::chrono::milliseconds kLongestScan{60000};

struct Finish {
  double ms = 0;
  double memory = 0;
};

/// When the map changed for the last time. The frames before differ from the last one in the places
/// of nearly all files.
Finish finish(const std::string& path) {
  test::OtherClient client;
  bench::ScreenDamage screen(kMap);
  const Clock::time_point start = Clock::now();
  const bench::RunningProgram program(client, path, kWidth, kHeight);
  Clock::time_point last = start;
  std::uint64_t seen = 0;
  for (auto longest = kLongestScan; const auto change = screen.next(longest); longest = kQuiet) {
    if (std::exchange(seen, change->sample) != change->sample) last = change->at;
  }
  return {std::chrono::duration<double, std::milli>(last - start).count(), program.peakMemory()};
}

void printMemory(double bytes) {
  constexpr double kMost = 115e6;
  bench::printRow("peak memory of the window with that tree, against its bound",
                  bench::mebibytes(bytes), bench::mebibytes(kMost), bench::times(bytes / kMost),
                  "at most 1");
}

}  // namespace

/// Measures a million files in tmpfs, or the tree at the path that is given.
int main(int argc, char** argv) {
  std::unique_ptr<bench::MillionFiles> files;
  if (argc < 2) files = std::make_unique<bench::MillionFiles>();
  const std::string path = argc < 2 ? files->path() : argv[1];
  const std::string name = argc < 2 ? "a million files in tmpfs" : path;
  const test::XServer server({.width = kWidth, .height = kHeight});
  bench::bareWalk(path, kBareThreads);  // warms the caches up
  std::vector<double> ours, bare, ratios, memory;
  for (std::size_t i = 0; i < kPairs; ++i) {
    bare.push_back(bench::timeMs([&] { bench::bareWalk(path, kBareThreads); }));
    const Finish run = finish(path);
    ours.push_back(run.ms);
    memory.push_back(run.memory);
    ratios.push_back(ours.back() / bare.back());
  }
  bench::printRow(
      "start until the finished picture of " + name + ", against a bare walk by two threads",
      bench::milliseconds(bench::median(ours)), bench::milliseconds(bench::median(bare)),
      bench::times(bench::median(ratios)), "at most 1.25");
  printMemory(bench::median(memory));
  return 0;
}
