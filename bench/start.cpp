// How long a start takes: from the program's execution to its first frame on the screen, against a
// program that opens a window of the same size with Xlib and draws one line of text with Xft.

#include <cstdio>
#include <string>
#include <vector>

#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/screen_pixel.h"
#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/x_server.h"

namespace {

constexpr std::size_t kPairs = 31;
/// In the left margin of the welcome, which nothing but a frame fills.
constexpr int kX = 10;
constexpr int kY = 360;

/// The screen is as black before as the background of either window: a pixel that is not comes
/// from a frame.
double firstFrameMs(const bench::ScreenPixel& pixel, const std::vector<std::string>& command) {
  const unsigned long black = pixel.value();
  double ms = 0;
  {
    std::optional<test::Child> child;
    ms = bench::timeMs([&] {
      child.emplace(command);
      pixel.waitUntilNot(black);
    });
  }
  pixel.waitUntil(black);
  return ms;
}

}  // namespace

int main() {
  const test::PrivateHome home;
  // 960 lines at 96 dpi make the interface's scale exactly 1.
  const test::XServer server({.width = 1280, .height = 960});
  const bench::ScreenPixel pixel(kX, kY);
  firstFrameMs(pixel, {BARE_WINDOW_PROGRAM, "1100", "720"});  // warms caches up
  firstFrameMs(pixel, {HEAPGAUGE_PROGRAM});
  std::vector<double> bare, ours, ratios;
  for (std::size_t i = 0; i < kPairs; ++i) {
    bare.push_back(firstFrameMs(pixel, {BARE_WINDOW_PROGRAM, "1100", "720"}));
    ours.push_back(firstFrameMs(pixel, {HEAPGAUGE_PROGRAM}));
    ratios.push_back(ours.back() / bare.back());
  }
  bench::printRow("start until the first frame, against a bare window with a line of text",
                  bench::milliseconds(bench::median(ours)),
                  bench::milliseconds(bench::median(bare)), bench::times(bench::median(ratios)),
                  "at most 3.00");
  return 0;
}
