// How long the window takes to answer the pointer: from a motion event, made by a second client, to
// the damage that the server tells that client of once the frame is on the screen, while a million
// files are scanned and at rest.
//
// The pointer goes to and fro between the menu button and the map, as often as a mouse reports:
// each frame differs in the button's colour. A scan counts from the key press that asks for it
// until the first motion after its threads have ended, and so includes dropping the old tree and
// showing the end of the scan. Where a frame takes longer than a mouse's period, the motions that a
// mouse would have made meanwhile count, each with the time that it would have waited. At rest the
// pointer goes from item to item of the map as well. Motions during which the host of a virtual
// machine kept its processors from it are left out: they tell of the host alone.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/support/map_pointer.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "bench/support/screen_damage.h"
#include "bench/support/stolen_time.h"
#include "tests/support/x_server.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr int kMotions = 600;    // at least, in either state
constexpr double kReportMs = 8;  // 125 Hz
constexpr double kBarAtRestMs = 2;
constexpr double kBarScanningMs = 10;
constexpr std::chrono::milliseconds kLongest(20'000);
/// What a frame changes comes as one damage after the other.
constexpr std::chrono::milliseconds kSameFrame(4);
constexpr unsigned long kF5 = 0xFFC2;

struct Point {
  int x;
  int y;
};
/// On the menu button in the corner, beside its glyph.
constexpr Point kButton = {kWidth - 12, 20};
constexpr Point kMap = {kWidth * 2 / 3, kHeight / 2};

double msSince(Clock::time_point start, Clock::time_point end) {
  return std::chrono::duration<double, std::milli>(end - start).count();
}

class Pointer {
 public:
  explicit Pointer(test::OtherClient& client)
      : client_(client), damage_({kButton.x, kButton.y, 1, 4}) {
    client_.movePointer(kMap.x, kMap.y);
  }

  /// To be called at rest, with the pointer on the map.
  void learnColours() {
    client_.movePointer(kButton.x, kButton.y);
    hovered_ = lastChange().sample;
    client_.movePointer(kMap.x, kMap.y);
    plain_ = lastChange().sample;
    if (plain_ == hovered_) throw std::runtime_error("the button looks the same");
  }

  /// Moves to the other place and adds the time until the frame. Returns when the mouse reports
  /// next.
  void move(std::vector<double>* times) {
    onButton_ = !onButton_;
    const Point to = onButton_ ? kButton : kMap;
    const long stolen = bench::stolenTicks();
    const Clock::time_point start = Clock::now();
    client_.movePointer(to.x, to.y);
    double waited = msSince(start, changeTo(onButton_ ? hovered_ : plain_));
    const bool counts = isCalm(stolen);
    for (; waited > 0; waited -= kReportMs) {
      if (counts) times->push_back(waited);
    }
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(-waited));
  }

  int disturbed() const { return disturbed_; }

 private:
  bool isCalm(long stolenBefore) {
    const bool calm = bench::stolenTicks() == stolenBefore;
    if (!calm) ++disturbed_;
    return calm;
  }
  std::optional<bench::ScreenDamage::Change> lastOf(
      std::optional<bench::ScreenDamage::Change> change) {
    while (const auto next = change ? damage_.next(kSameFrame) : std::nullopt) change = next;
    return change;
  }
  bench::ScreenDamage::Change lastChange() {
    const auto change = lastOf(damage_.next(kLongest));
    if (!change) throw std::runtime_error("the awaited frame does not come");
    return *change;
  }
  Clock::time_point changeTo(std::uint64_t wanted) {
    while (const auto change = damage_.next(kLongest)) {
      if (change->sample == wanted) return change->at;
    }
    throw std::runtime_error("the awaited frame does not come");
  }

  test::OtherClient& client_;
  bench::ScreenDamage damage_;
  std::uint64_t plain_ = 0;
  std::uint64_t hovered_ = 0;
  bool onButton_ = false;
  int disturbed_ = 0;
};

/// Has the folder scanned again and moves the pointer meanwhile; returns the number of motions.
int moveDuringScan(test::OtherClient& client, const bench::RunningProgram& program,
                   Pointer& pointer, std::vector<double>* times) {
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(60);
  const int threadsAtRest = program.threads();
  client.pressKey(kF5);
  client.releaseKey(kF5);
  bool started = false;
  for (int motions = 1; Clock::now() < deadline; ++motions) {
    const bool scans = program.threads() > threadsAtRest;
    pointer.move(times);
    if (started && !scans) return motions;
    started = started || scans;
  }
  throw std::runtime_error("the scan does not begin or end");
}

void report(const std::string& state, const std::vector<double>& times, double barMs) {
  const std::string question = "from a motion to its frame, 3840 x 2160, " + state + ", against ";
  const auto row = [&](const std::string& which, double ms, const std::string& bar) {
    bench::printRow(question + bench::milliseconds(barMs) + ", " + which, bench::milliseconds(ms),
                    bench::milliseconds(barMs), bench::times(ms / barMs), bar);
  };
  row("median", bench::percentile(times, 0.5), "-");
  row("99th percentile", bench::percentile(times, 0.99), "at most 1");
}

void measure() {
  const bench::MillionFiles files;
  const test::XServer server({.width = kWidth, .height = kHeight});
  test::OtherClient client;
  const bench::RunningProgram program(client, files.path(), kWidth, kHeight);
  program.waitUntilIdle();
  bench::MapPointer mapPointer(client, kWidth, kHeight);
  const std::vector<double> onMap = mapPointer.move(kMotions);
  mapPointer.comeBack();
  Pointer pointer(client);
  pointer.learnColours();

  std::vector<double> resting;
  for (int i = 0; i < kMotions; ++i) pointer.move(&resting);
  std::vector<double> scanning;
  int scans = 0;
  for (int motions = 0; motions < kMotions; ++scans) {
    program.waitUntilIdle();
    motions += moveDuringScan(client, program, pointer, &scanning);
  }

  std::fprintf(stderr,
               "%d scans, %d motions left out; the longest: %.1f ms scanning, %.1f ms at rest\n",
               scans, pointer.disturbed() + mapPointer.disturbed(), bench::percentile(scanning, 1),
               bench::percentile(resting, 1));
  report("at rest", resting, kBarAtRestMs);
  report("at rest from item to item of the map", onMap, kBarAtRestMs);
  report("while a million files are scanned", scanning, kBarScanningMs);
}

}  // namespace

int main() try {
  measure();
  return 0;
} catch (const std::exception& problem) {  // the million files are gone by now
  std::fprintf(stderr, "%s\n", problem.what());
  return 1;
}
