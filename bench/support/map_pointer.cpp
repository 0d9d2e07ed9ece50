#include "bench/support/map_pointer.h"

#include <chrono>

#include "bench/support/stolen_time.h"

namespace bench {

namespace {
/// As often as a mouse reports.
constexpr std::chrono::milliseconds kReport(8);
/// What a frame changes comes as one damage after the other.
constexpr std::chrono::milliseconds kSameFrame(4);
}  // namespace

MapPointer::MapPointer(test::OtherClient& client, int width, int height)
    : client_(client), width_(width), height_(height), damage_({width / 2, height / 2, 1, 4}) {
  comeBack();
}

std::vector<double> MapPointer::move(int motions) {
  std::vector<double> times;
  for (int i = 0; i < motions; ++i) {
    const int x = width_ / 4 + upTo(width_ / 2);
    const int y = height_ / 4 + upTo(height_ / 2);
    const long stolen = stolenTicks();
    const std::optional<double> ms = moveTo(x, y);
    const bool calm = stolenTicks() == stolen;
    if (!calm) ++disturbed_;
    if (ms && calm) times.push_back(*ms);
  }
  return times;
}

void MapPointer::comeBack() { moveTo(width_ * 2 / 3, height_ / 2); }

std::optional<double> MapPointer::moveTo(int x, int y) {
  const ScreenDamage::Clock::time_point start = ScreenDamage::Clock::now();
  client_.movePointer(x, y);
  std::optional<ScreenDamage::Change> last;
  for (auto longest = kReport; const auto change = damage_.next(longest); longest = kSameFrame) {
    last = change;
  }
  if (!last) return std::nullopt;
  return std::chrono::duration<double, std::milli>(last->at - start).count();
}

}  // namespace bench
