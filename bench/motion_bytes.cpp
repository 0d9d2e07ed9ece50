// What a motion of the pointer over the map costs on the way to the X server, on a large screen:
// the bytes that the program sends for it, against those of a picture of the map that fills the
// screen.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "bench/support/running_program.h"
#include "tests/support/counting_proxy.h"
#include "tests/support/x_server.h"

namespace {

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr double kPictureBytes = 4.0 * kWidth * kHeight;
constexpr int kMotions = 300;
constexpr double kBar = 0.01;
/// A frame's requests come in one go; the card of an item at rest comes later, after 400 ms.
constexpr std::chrono::milliseconds kQuiet(80);

/// What has been sent once nothing more comes.
std::uint64_t settledBytes(const test::CountingProxy& proxy) {
  std::uint64_t before = 0;
  std::uint64_t now = proxy.bytesToServer();
  do {
    before = now;
    std::this_thread::sleep_for(kQuiet);
    now = proxy.bytesToServer();
  } while (now != before);
  return now;
}

std::vector<double> bytesOfMotions(test::OtherClient& client, const test::CountingProxy& proxy) {
  // Well inside the map, which is to the right of the folder list.
  std::uniform_int_distribution<int> xs(kWidth * 2 / 5, kWidth - 40);
  std::uniform_int_distribution<int> ys(100, kHeight - 100);
  std::minstd_rand random(1);
  client.movePointer(kWidth - 40, kHeight - 100);
  std::vector<double> bytes;
  std::uint64_t before = settledBytes(proxy);
  for (int i = 0; i < kMotions; ++i) {
    client.movePointer(xs(random), ys(random));
    const std::uint64_t after = settledBytes(proxy);
    bytes.push_back(static_cast<double>(after - before));
    before = after;
  }
  return bytes;
}

std::string kilobytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f kB", bytes / 1000);
  return text;
}

void report(const std::string& what, double bytes) {
  char ratio[32];
  std::snprintf(ratio, sizeof ratio, "%.5f", bytes / kPictureBytes);
  bench::printRow(
      "bytes to the X server for a motion over the map, 3840 x 2160, against a picture "
      "of that size, " +
          what,
      kilobytes(bytes), kilobytes(kPictureBytes), ratio, "at most 0.01");
}

}  // namespace

int main() {
  const bench::MillionFiles files;
  const test::XServer server({.width = kWidth, .height = kHeight});
  test::OtherClient client;  // not through the proxy
  const test::CountingProxy proxy(server.display());
  const bench::RunningProgram program(client, files.path(), kWidth, kHeight);
  program.waitUntilIdle();

  const std::vector<double> bytes = bytesOfMotions(client, proxy);
  if (bench::percentile(bytes, 1) == 0) throw std::runtime_error("no motion changed anything");
  std::fprintf(stderr, "%d motions, %.0f of them sent nothing\n", kMotions,
               static_cast<double>(std::ranges::count(bytes, 0.0)));
  report("median", bench::median(bytes));
  report("most", bench::percentile(bytes, 1));
  return 0;
}
