// How much a walk costs beyond its system calls, and how it compares with other programs: the
// scanner's wall time against a bare walker with as many threads, and whole processes against du,
// ncdu and gdu. Ours is the built program on an X server of the benchmark's own: with its fonts,
// its window and its map, which the others do not have. A rival that fails has no figures.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/bare_walker.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/quiet_run.h"
#include "bench/support/row.h"
#include "sizewalk/storage_probe.h"
#include "sizewalk/tree_scanner.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

using sizewalk::ScanOptions;
using sizewalk::TreeScanner;

constexpr std::size_t kPairs = 15;
constexpr std::size_t kProgramPairs = 7;

struct Place {
  std::string name;
  std::string path;
};

std::uint64_t scan(const std::string& path) {
  TreeScanner scanner{ScanOptions()};
  scanner.setRoot(path);
  scanner.walk(sizewalk::kRootNode);
  return scanner.tree().nodeCount();
}

void compareWithBareWalker(const Place& place) {
  const int threads = sizewalk::probeReaderThreads(place.path);
  std::uint64_t bareEntries = 0, nodes = 0;
  const bench::PairedTiming timing = bench::timePaired(
      kPairs, [&] { bareEntries = bench::bareWalk(place.path, threads).entries; },
      [&] { nodes = scan(place.path); });
  std::fprintf(stderr, "%s: %lu entries, %d readers, bare walker saw %lu\n", place.name.c_str(),
               static_cast<unsigned long>(nodes), threads, static_cast<unsigned long>(bareEntries));
  bench::printRow("walk of " + place.name + ", against a bare walker",
                  bench::milliseconds(timing.candidateMs), bench::milliseconds(timing.baselineMs),
                  bench::times(1 / timing.speedup), "at most 1.15");
}

/// Whole runs of the program: it opens its window, scans, draws one frame into a file and takes
/// everything down again.
class Capture {
 public:
  Capture() {
    // Files that take no time to make occupy nothing: without this there would be no map to draw.
    test::writeFile(home_.path() + "/.config/heapgauge/settings.ini",
                    "[Heapgauge]\nShowPhysicalFileSize=false\n");
  }

  /// Throws std::runtime_error when no frame comes of it.
  void run(const std::string& path) const {
    std::filesystem::remove(frame_);
    const std::vector<std::string> command = {HEAPGAUGE_PROGRAM, "--capture", frame_,
                                              "--capture-after", "0",         path};
    if (bench::runQuietly(command) != bench::Ending::Success || !std::filesystem::exists(frame_)) {
      throw std::runtime_error("the program captures no frame");
    }
  }

 private:
  const test::PrivateHome home_;
  const test::XServer server_;
  const std::string frame_ = home_.path() + "/frame.ppm";
};

struct Comparison {
  /// How the runs ended, the worst of them. Unless that is Success there is no timing.
  bench::Ending rival = bench::Ending::Success;
  bench::PairedTiming timing;
};

Comparison compareRuns(const std::vector<std::string>& rival, const Capture& capture,
                       const std::string& path) {
  // Asked before anything is timed, for none is worth waiting for otherwise.
  const bench::Ending first = bench::runQuietly(rival);
  if (first != bench::Ending::Success) return {first, {}};
  bool failed = false;
  const bench::PairedTiming timing = bench::timePaired(
      kProgramPairs, [&] { failed |= bench::runQuietly(rival) != bench::Ending::Success; },
      [&] { capture.run(path); });
  if (failed) return {bench::Ending::Failure, {}};
  return {bench::Ending::Success, timing};
}

void compareWithProgram(const Place& place, const Capture& capture,
                        std::vector<std::string> rival) {
  const std::string question = "whole process on " + place.name + ", against " + rival[0];
  rival.push_back(place.path);
  const auto [ending, timing] = compareRuns(rival, capture, place.path);
  if (ending != bench::Ending::Success) {
    const bool absent = ending == bench::Ending::NotInstalled;
    bench::printRow(question, "-", absent ? "not installed" : "failed", "-", "below 1");
    return;
  }
  bench::printRow(question, bench::milliseconds(timing.candidateMs),
                  bench::milliseconds(timing.baselineMs), bench::times(1 / timing.speedup),
                  "below 1");
}

void compare(const Place& place) {
  compareWithBareWalker(place);
  const Capture capture;
  compareWithProgram(place, capture, {"du", "-sx"});
  compareWithProgram(place, capture, {"ncdu", "-0xo", "/dev/null"});
  compareWithProgram(place, capture, {"gdu", "-npx"});
}

}  // namespace

/// Without arguments measures a million files in tmpfs and /usr; with a path, that tree alone.
int main(int argc, char** argv) {
  if (argc > 1) {
    compare({argv[1], argv[1]});
    return 0;
  }
  {
    const bench::MillionFiles files;
    compare({"a million files in tmpfs", files.path()});
  }
  compare({"/usr", "/usr"});
  return 0;
}
