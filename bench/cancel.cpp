// How long a cancelled walk takes to return: a million entries in many folders, and in a single
// one, cancelled at moments spread over the whole walk. The longest wait counts.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>

#include "bench/support/million_files.h"
#include "bench/support/row.h"
#include "sizewalk/tree_scanner.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kMoments = 20;
constexpr double kBarMs = 100;

struct Walk {
  double totalMs = 0;
  double afterCancelMs = 0;
};

/// Walks `path` and cancels after `cancelAfterMs`, or never when it is negative.
Walk walk(const std::string& path, double cancelAfterMs) {
  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(path);
  const Clock::time_point start = Clock::now();
  Clock::time_point cancelled = start;
  std::thread walking([&] { scanner.walk(sizewalk::kRootNode); });
  if (cancelAfterMs >= 0) {
    std::this_thread::sleep_until(
        start + std::chrono::duration_cast<Clock::duration>(Milliseconds(cancelAfterMs)));
    cancelled = Clock::now();
    scanner.cancel();
  }
  walking.join();
  const Clock::time_point end = Clock::now();
  return {Milliseconds(end - start).count(), Milliseconds(end - cancelled).count()};
}

void measure(const std::string& name, const std::string& path) {
  const double whole = walk(path, -1).totalMs;
  double longest = 0;
  for (int i = 0; i < kMoments; ++i) {
    longest = std::max(longest, walk(path, whole * i / kMoments).afterCancelMs);
  }
  std::fprintf(stderr, "%s: the whole walk takes %.0f ms\n", name.c_str(), whole);
  bench::printRow("longest wait for a cancelled walk of " + name, bench::milliseconds(longest),
                  bench::milliseconds(kBarMs), bench::times(longest / kBarMs), "at most 1");
}

}  // namespace

int main() {
  const bench::MillionFiles files;
  measure("a million files in tmpfs", files.path());
  const bench::MillionFiles flat(bench::MillionFiles::Shape::OneFolder);
  measure("a million files in one folder in tmpfs", flat.path());
  return 0;
}
