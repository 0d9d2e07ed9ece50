#include "ui/widgets/arrival_guard.h"

#include <utility>

namespace ui {

void ArrivalGuard::place(const Places& places) {
  std::map<Control, Arrival> arrivals;
  for (const auto& [control, rect] : places) {
    const auto known = arrivals_.find(control);
    const bool stayed = known != arrivals_.end() && known->second.place == rect;
    arrivals[control] = stayed ? known->second : Arrival{.place = rect, .sinceMs = std::nullopt};
  }
  arrivals_ = std::move(arrivals);
}

void ArrivalGuard::tick(std::int64_t nowMs) {
  for (auto& [control, arrival] : arrivals_) {
    if (!arrival.sinceMs) arrival.sinceMs = nowMs;
  }
}

void ArrivalGuard::pointerAt(int x, int y, std::optional<Control> control) {
  const Point point = {x, y};
  const bool moved = pointer_ && *pointer_ != point;
  pointer_ = point;
  const auto found = control ? arrivals_.find(*control) : arrivals_.end();
  if (moved && found != arrivals_.end()) found->second.reached = true;
}

bool ArrivalGuard::takesPress(Control control, int x, int y, std::int64_t timeMs) {
  pointerAt(x, y, control);
  const auto found = arrivals_.find(control);
  if (found == arrivals_.end()) return false;
  Arrival& arrival = found->second;
  if (!arrival.sinceMs) arrival.sinceMs = timeMs;
  return arrival.reached || timeMs - *arrival.sinceMs >= kRestMs;
}

}  // namespace ui
