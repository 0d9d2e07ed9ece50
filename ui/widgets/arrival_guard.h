#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "ui/geometry.h"

namespace ui {

/// Keeps presses from controls that have just come under a resting pointer: what is pressed there
/// was meant for what lay there before. Such a control takes presses once the pointer has moved on
/// to it from beside it, or half a second after it came. Controls that stay where they are, or
/// under the pointer, are never held back.
///
/// The view numbers its controls as it likes, and tells where they are after each change. Window
/// thread only.
class ArrivalGuard {
 public:
  using Control = std::int64_t;
  using Places = std::vector<std::pair<Control, Rect>>;

  /// How long a control takes no press without a move.
  static constexpr std::int64_t kRestMs = 500;

  /// The controls are at `places` now, and nowhere else.
  void place(const Places& places);
  /// What is placed by now takes presses at once.
  void settle();
  /// Tells the time, as that of events: it starts for what came since the last call.
  void tick(std::int64_t nowMs);

  void pointerAt(int x, int y);
  /// Where the pointer was is not known any more. What is told next is no move: it may have been
  /// there all the time.
  void forgetPointer() { pointer_.reset(); }
  /// Whether `control` takes a press at (x, y).
  bool takesPress(Control control, int x, int y, std::int64_t timeMs);

 private:
  struct Point {
    int x;
    int y;
  };
  struct Arrival {
    Rect place;
    std::optional<std::int64_t> sinceMs;
    bool reached = false;  // the pointer moved on to it, or need not
  };

  bool stays(const Rect& before, const Rect& now) const;

  std::map<Control, Arrival> arrivals_;
  std::optional<Point> pointer_;
};

}  // namespace ui
