// What an entry costs the live window in larger and larger trees of the same shape: resident memory
// at its peak beyond that of a window with an empty folder, and the motion of a pointer over the
// finished map, which is to cost the same in all of them.

#include <cstdio>
#include <exception>
#include <string>

#include "bench/support/map_pointer.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/roomy_memory.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kMotions = 300;
constexpr int kFewThousands = 100;

struct Cost {
  double peakBytes = 0;
  double motionMs = 0;
};

Cost costOf(const std::string& path) {
  const test::XServer server({.width = kWidth, .height = kHeight});
  test::OtherClient client;
  const bench::RunningProgram program(client, path, kWidth, kHeight);
  program.waitUntilIdle();
  Cost cost;
  cost.peakBytes = program.peakMemory();
  bench::MapPointer pointer(client, kWidth, kHeight);
  cost.motionMs = bench::median(pointer.move(kMotions));
  return cost;
}

Cost costOf(int thousands) {
  const bench::MillionFiles files(bench::MillionFiles::Shape::Project, thousands);
  return costOf(files.path());
}

std::string bytes(double count) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f bytes", count);
  return text;
}

void report(const std::string& name, int thousands, const Cost& many, const Cost& few,
            double emptyBytes) {
  const double manyBytes = (many.peakBytes - emptyBytes) / (thousands * 1000.0);
  const double fewBytes = (few.peakBytes - emptyBytes) / (kFewThousands * 1000.0);
  bench::printRow("peak memory of the window with " + name + ", an entry, against one of 100,000",
                  bytes(manyBytes), bytes(fewBytes), bench::times(manyBytes / fewBytes),
                  "at most 1.3");
  bench::printRow("from a motion to its frame, 1920 x 1080, over " + name + ", against 100,000",
                  bench::milliseconds(many.motionMs), bench::milliseconds(few.motionMs),
                  bench::times(many.motionMs / few.motionMs), "at most 1.3");
}

void measure() {
  const double emptyBytes = costOf(test::TempDirectory().path()).peakBytes;
  const Cost few = costOf(kFewThousands);
  report("300,000 files", 300, costOf(300), few, emptyBytes);
  report("a million files", 1000, costOf(1000), few, emptyBytes);
  report("three million files", 3000, costOf(3000), few, emptyBytes);
}

}  // namespace

int main() try {
  bench::inRoomyMemory(measure);
  return 0;
} catch (const std::exception& problem) {
  std::fprintf(stderr, "%s\n", problem.what());
  return 1;
}
