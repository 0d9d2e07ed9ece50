#pragma once

#include <functional>
#include <optional>

#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace app {

/// The line between two panes under the user's hand: dragged to another place, put back to its own
/// by a double press. A drag that another button or something over the window breaks off leaves it
/// where the drag began. Window thread only.
class Divider : public ui::View {
 public:
  enum class Direction { Across, Down };

  /// Where the user wants it, as the share that the pane before it has of both; nothing for its own
  /// place. The frame is to be laid out again, and stops it where a pane would become too small.
  std::function<void(std::optional<double> share)> onMoved;

  /// `style` outlives the divider.
  explicit Divider(const ui::Style& style) : style_(style) {}

  /// Which way it moves, the panes on its two sides, and the place that it has them from, as
  /// `onMoved` tells it.
  void setPanes(Direction direction, const ui::Rect& before, const ui::Rect& after,
                std::optional<double> place);

  /// Ends a drag where it began. False when there is none.
  bool takeBack();

  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void pointerLost() override { takeBack(); }
  ui::PointerShape pointer() const override;

 private:
  int along(int x, int y) const { return direction_ == Direction::Across ? x : y; }
  int start(const ui::Rect& pane) const { return along(pane.x, pane.y); }
  int length(const ui::Rect& pane) const { return along(pane.w, pane.h); }
  int usable() const { return length(before_) + length(after_); }
  void moveTo(std::optional<double> share) const;

  const ui::Style& style_;
  Direction direction_ = Direction::Across;
  ui::Rect before_;
  ui::Rect after_;
  std::optional<double> place_;
  struct Drag {
    /// How far from its edge it was taken hold of.
    int grabbedAt;
    /// `place_` before.
    std::optional<double> from;
    bool moved = false;
  };
  std::optional<Drag> drag_;
};

}  // namespace app
