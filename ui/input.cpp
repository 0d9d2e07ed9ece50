#include "ui/input.h"

#include <cstdlib>

namespace ui {

namespace {
constexpr int kClickDistancePx = 4;
constexpr std::int64_t kClickIntervalMs = 399;
}  // namespace

int ClickCounter::press(int x, int y, std::int64_t nowMs) {
  const bool continues = std::abs(x - lastPressX_) <= kClickDistancePx &&
                         std::abs(y - lastPressY_) <= kClickDistancePx &&
                         nowMs - lastPressMs_ <= kClickIntervalMs;
  count_ = continues ? count_ + 1 : 1;
  lastPressMs_ = nowMs;
  lastPressX_ = x;
  lastPressY_ = y;
  return count_;
}

}  // namespace ui
