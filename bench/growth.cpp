// What an entry costs in larger and larger trees of the same shape, and in one folder of a million,
// against one in a tree of 100,000: whether a walk takes longer for an entry because there are
// many.

#include <cstdint>
#include <cstdio>
#include <string>

#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/roomy_memory.h"
#include "bench/support/row.h"
#include "sizewalk/tree_scanner.h"

namespace {

using bench::MillionFiles;

constexpr std::size_t kPairs = 5;
constexpr int kFewThousands = 100;

std::uint64_t walk(const MillionFiles& files) {
  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(files.path());
  scanner.walk(sizewalk::kRootNode);
  return scanner.tree().nodeCount();
}

std::string perEntry(double ms, std::uint64_t entries) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f µs", ms * 1000 / static_cast<double>(entries));
  return text;
}

void compare(const MillionFiles& few, const std::string& name, const MillionFiles& many) {
  std::uint64_t fewEntries = 0, manyEntries = 0;
  const bench::PairedTiming timing = bench::timePaired(
      kPairs, [&] { fewEntries = walk(few); }, [&] { manyEntries = walk(many); });
  const double growth =
      static_cast<double>(fewEntries) / static_cast<double>(manyEntries) / timing.speedup;
  bench::printRow("walk of " + name + " in tmpfs, an entry, against one of 100,000",
                  perEntry(timing.candidateMs, manyEntries),
                  perEntry(timing.baselineMs, fewEntries), bench::times(growth), "at most 1.3");
}

void measure() {
  using enum MillionFiles::Shape;
  const MillionFiles few(Project, kFewThousands);
  compare(few, "300,000 files", MillionFiles(Project, 300));
  compare(few, "a million files", MillionFiles(Project, 1000));
  compare(few, "three million files", MillionFiles(Project, 3000));
  compare(MillionFiles(OneFolder, kFewThousands), "a million files in one folder",
          MillionFiles(OneFolder, 1000));
}

}  // namespace

int main() {
  bench::inRoomyMemory(measure);
  return 0;
}
