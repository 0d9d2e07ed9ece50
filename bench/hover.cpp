// How long the window takes to answer the pointer: from a motion event, made by a second client, to
// the finished frame on the screen, while a million files are scanned and at rest.
//
// The pointer goes to and fro between the menu button and the map, as often as a mouse reports:
// each frame differs in the button's colour. A scan counts from the key press that asks for it
// until the first motion after its threads have ended, and so includes dropping the old tree and
// showing the end of the scan. Where a frame takes longer than a mouse's period, the motions that a
// mouse would have made meanwhile count, each with the time that it would have waited.

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "bench/support/screen_pixel.h"
#include "tests/support/x_server.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kMotions = 600;    // at least, in either state
constexpr double kReportMs = 8;  // 125 Hz
constexpr unsigned long kF5 = 0xFFC2;

struct Point {
  int x;
  int y;
};
/// On the menu button in the corner, beside its glyph.
constexpr Point kButton = {kWidth - 12, 20};
constexpr Point kMap = {kWidth * 2 / 3, kHeight / 2};

class Pointer {
 public:
  explicit Pointer(test::OtherClient& client) : client_(client), pixel_(kButton.x, kButton.y) {
    client_.movePointer(kMap.x, kMap.y);
  }

  /// To be called at rest, with the pointer on the map.
  void learnColours() {
    plain_ = pixel_.value();
    client_.movePointer(kButton.x, kButton.y);
    pixel_.waitUntilNot(plain_);
    hovered_ = pixel_.value();
    onButton_ = true;
  }

  /// Moves to the other place and adds the time until the frame. Returns when the mouse reports
  /// next.
  void move(std::vector<double>* times) {
    onButton_ = !onButton_;
    const Point to = onButton_ ? kButton : kMap;
    const double ms = bench::timeMs([&] {
      client_.movePointer(to.x, to.y);
      pixel_.waitUntil(onButton_ ? hovered_ : plain_);
    });
    double waited = ms;
    for (; waited > 0; waited -= kReportMs) times->push_back(waited);
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(-waited));
  }

 private:
  test::OtherClient& client_;
  bench::ScreenPixel pixel_;
  unsigned long plain_ = 0;
  unsigned long hovered_ = 0;
  bool onButton_ = false;
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

void report(const std::string& what, const std::vector<double>& scanning,
            const std::vector<double>& resting, double share) {
  const double during = bench::percentile(scanning, share);
  const double after = bench::percentile(resting, share);
  bench::printRow(
      "from a motion to its frame, 1920 x 1080, while a million files are scanned, "
      "against at rest, " +
          what,
      bench::milliseconds(during), bench::milliseconds(after), bench::times(during / after), "-");
}

}  // namespace

int main() {
  const bench::MillionFiles files;
  const test::XServer server({.width = kWidth, .height = kHeight});
  test::OtherClient client;
  const bench::RunningProgram program(client, files.path(), kWidth, kHeight);
  Pointer pointer(client);
  program.waitUntilIdle();
  pointer.learnColours();

  std::vector<double> resting;
  for (int i = 0; i < kMotions; ++i) pointer.move(&resting);
  std::vector<double> scanning;
  int scans = 0;
  for (int motions = 0; motions < kMotions; ++scans) {
    program.waitUntilIdle();
    motions += moveDuringScan(client, program, pointer, &scanning);
  }

  std::fprintf(stderr, "%d scans; the longest: %.0f ms while scanning, %.0f ms at rest\n", scans,
               bench::percentile(scanning, 1), bench::percentile(resting, 1));
  report("median", scanning, resting, 0.5);
  report("99th percentile", scanning, resting, 0.99);
  return 0;
}
