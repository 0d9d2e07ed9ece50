#pragma once

#include <functional>
#include <optional>

#include "app/frame/frame_layout.h"
#include "ui/geometry.h"
#include "ui/input.h"

namespace app {

/// The dividers of the frame under the user's hand: dragged to another place, put back to their own
/// by a double press. Their places live as long as this. Window thread only.
class Dividers {
 public:
  enum class Direction { Across, Down };

  /// A divider has another place: the frame is to be laid out anew.
  std::function<void()> onMoved;

  const DividerPlaces& places() const { return places_; }
  /// Where the dividers are now.
  void follow(const FrameLayout& layout, bool listAboveMap);

  /// Which way the divider at a point, or the one that is being dragged, moves; nothing elsewhere.
  std::optional<Direction> at(int x, int y) const;

  /// True when the press was on a divider.
  bool press(const ui::MouseEvent& event);
  /// True while a drag goes on.
  bool drag(const ui::MouseEvent& event);
  void release() { held_.reset(); }

 private:
  /// A divider, the parts on its two sides and the place that it stands for.
  struct Divider {
    ui::Rect rect;
    ui::Rect before;
    ui::Rect after;
    Direction direction;
    std::optional<double> DividerPlaces::*place;
  };

  const Divider* dividerAt(int x, int y) const;
  void moved() const;

  DividerPlaces places_;
  Divider main_{};
  Divider kinds_{};
  /// The one that is dragged, and how far from its edge it was taken hold of.
  std::optional<Divider> held_;
  int grabbedAt_ = 0;
};

}  // namespace app
