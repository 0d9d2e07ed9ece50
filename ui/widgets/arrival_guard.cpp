#include "ui/widgets/arrival_guard.h"

#include <utility>

namespace ui {

bool ArrivalGuard::stays(const Rect& before, const Rect& now) const {
  if (before == now) return true;
  return pointer_ && before.contains(pointer_->x, pointer_->y) &&
         now.contains(pointer_->x, pointer_->y);
}

void ArrivalGuard::place(const Places& places) {
  std::map<Control, Arrival> arrivals;
  for (const auto& [control, rect] : places) {
    const auto known = arrivals_.find(control);
    const bool stayed = known != arrivals_.end() && stays(known->second.place, rect);
    Arrival& arrival = arrivals[control];
    if (stayed) arrival = known->second;
    arrival.place = rect;
  }
  arrivals_ = std::move(arrivals);
}

void ArrivalGuard::settle() {
  for (auto& [control, arrival] : arrivals_) arrival.reached = true;
}

void ArrivalGuard::tick(std::int64_t nowMs) {
  for (auto& [control, arrival] : arrivals_) {
    if (!arrival.sinceMs) arrival.sinceMs = nowMs;
  }
}

void ArrivalGuard::pointerAt(int x, int y) {
  const auto before = std::exchange(pointer_, Point{x, y});
  if (!before) return;
  for (auto& [control, arrival] : arrivals_) {
    if (!arrival.place.contains(before->x, before->y) && arrival.place.contains(x, y)) {
      arrival.reached = true;
    }
  }
}

bool ArrivalGuard::takesPress(Control control, int x, int y, std::int64_t timeMs) {
  pointerAt(x, y);
  const auto found = arrivals_.find(control);
  if (found == arrivals_.end()) return false;
  Arrival& arrival = found->second;
  if (!arrival.sinceMs) arrival.sinceMs = timeMs;
  return arrival.reached || timeMs - *arrival.sinceMs >= kRestMs;
}

}  // namespace ui
