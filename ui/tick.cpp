#include "ui/tick.h"

#include <utility>

namespace ui {

void Tick::set(int intervalMs, std::function<void()> onTick, std::int64_t now) {
  intervalMs_ = intervalMs;
  onTick_ = std::move(onTick);
  nextTick_ = now + intervalMs;
}

void Tick::stop() {
  intervalMs_ = 0;
  onTick_ = nullptr;
}

void Tick::runIfDue(std::int64_t now) {
  if (!installed() || !isDue(now)) return;
  nextTick_ = now + intervalMs_;
  const auto onTick = onTick_;  // survives being replaced while it runs
  onTick();
}

int Tick::msUntilDue(std::int64_t now) const {
  if (!installed()) return -1;
  return isDue(now) ? 0 : static_cast<int>(nextTick_ - now);
}

}  // namespace ui
