// How long the window takes to follow another size while a million files are scanned: from the
// request of a second client until the menu button is on the screen in its new corner, as the
// server's damage tells that client. The map is then still that of the size before, with ground
// beside it; at rest it is there with the same frame. There is no bar: most of the time is the
// server's, which copies 33 MB several times.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "bench/support/screen_damage.h"
#include "tests/support/x_server.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr int kNarrow = kWidth - 200;
constexpr int kResizes = 30;  // at least, in either state
constexpr double kTwoFramesMs = 33;
constexpr std::chrono::milliseconds kLongest(20'000);
constexpr std::chrono::milliseconds kAllOfAFrame(500);
/// Between two sizes, for the picture of the first.
constexpr std::chrono::milliseconds kBetween(100);
constexpr unsigned long kF5 = 0xFFC2;
/// The menu button of the wide window.
constexpr ui::Rect kCorner = {kWidth - 40, 8, 36, 28};

class Edge {
 public:
  Edge(test::OtherClient& client, unsigned long window)
      : client_(client), window_(window), damage_(kCorner) {}

  /// To be called at rest.
  void learn() {
    client_.resizeWindow(window_, kNarrow, kHeight);
    settle();
    client_.resizeWindow(window_, kWidth, kHeight);
    wide_ = settle();
    client_.resizeWindow(window_, kNarrow, kHeight);
    if (settle() == wide_) throw std::runtime_error("the corner looks the same in both sizes");
  }

  /// Milliseconds until the wide window is on the screen. It is narrow again afterwards.
  double widen() {
    while (damage_.next(std::chrono::milliseconds(0))) {
    }
    const Clock::time_point start = Clock::now();
    client_.resizeWindow(window_, kWidth, kHeight);
    while (const auto change = damage_.next(kLongest)) {
      if (change->sample != wide_) continue;
      std::this_thread::sleep_for(kBetween);
      client_.resizeWindow(window_, kNarrow, kHeight);
      std::this_thread::sleep_for(kBetween);
      return std::chrono::duration<double, std::milli>(change->at - start).count();
    }
    throw std::runtime_error("the awaited frame does not come");
  }

 private:
  std::uint64_t settle() {
    auto last = damage_.next(kLongest);
    if (!last) throw std::runtime_error("nothing is drawn");
    while (const auto next = damage_.next(kAllOfAFrame)) last = next;
    return last->sample;
  }

  test::OtherClient& client_;
  const unsigned long window_;
  bench::ScreenDamage damage_;
  std::uint64_t wide_ = 0;
};

/// Has the folder scanned again; adds the sizes that began and ended during the scan.
void widenDuringScan(test::OtherClient& client, const bench::RunningProgram& program, Edge& edge,
                     std::vector<double>* times) {
  const int threadsAtRest = program.threads();
  client.pressKey(kF5);
  client.releaseKey(kF5);
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
  while (program.threads() <= threadsAtRest) {
    if (Clock::now() > deadline) throw std::runtime_error("the scan does not begin");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  while (program.threads() > threadsAtRest) times->push_back(edge.widen());
  times->pop_back();  // the scan may have ended meanwhile
}

void report(const char* state, const std::vector<double>& times) {
  const std::string question = std::string("from another size to its frame, 3840 x 2160, ") + state;
  const double middle = bench::median(times);
  bench::printRow(question + ", median, against two frames of a screen",
                  bench::milliseconds(middle), bench::milliseconds(kTwoFramesMs),
                  bench::times(middle / kTwoFramesMs), "-");
}

void measure() {
  const bench::MillionFiles files;
  const test::XServer server({.width = kWidth, .height = kHeight});
  test::OtherClient client;
  const bench::RunningProgram program(client, files.path(), kWidth, kHeight);
  program.waitUntilIdle();
  Edge edge(client, client.shownWindow("Heapgauge"));
  edge.learn();

  std::vector<double> resting;
  for (int i = 0; i < kResizes; ++i) resting.push_back(edge.widen());
  std::vector<double> scanning;
  while (scanning.size() < kResizes) {
    program.waitUntilIdle();
    widenDuringScan(client, program, edge, &scanning);
  }
  std::fprintf(stderr, "the longest: %.0f ms scanning, %.0f ms at rest\n",
               bench::percentile(scanning, 1), bench::percentile(resting, 1));
  report("while a million files are scanned", scanning);
  report("at rest", resting);
}

}  // namespace

int main() try {
  measure();
  return 0;
} catch (const std::exception& problem) {  // the million files are gone by now
  std::fprintf(stderr, "%s\n", problem.what());
  return 1;
}
