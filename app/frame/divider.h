#pragma once

#include <functional>
#include <optional>

#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace app {

/// The line between two panes under the user's hand: dragged to another place, put back to its own
/// by a double press. Window thread only.
class Divider : public ui::View {
 public:
  enum class Direction { Across, Down };

  /// Where the user wants it, as the share that the pane before it has of both; nothing for its own
  /// place. The frame is to be laid out again.
  std::function<void(std::optional<double> share)> onMoved;

  /// `style` outlives the divider.
  explicit Divider(const ui::Style& style) : style_(style) {}

  /// Which way it moves, and the panes on its two sides.
  void setPanes(Direction direction, const ui::Rect& before, const ui::Rect& after);

  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  /// Buttons other than the primary one end no drag.
  void release(const ui::MouseEvent& event) override;
  ui::PointerShape pointer() const override;

 private:
  int along(int x, int y) const { return direction_ == Direction::Across ? x : y; }
  int start(const ui::Rect& pane) const { return along(pane.x, pane.y); }
  int length(const ui::Rect& pane) const { return along(pane.w, pane.h); }
  void moveTo(std::optional<double> share) const;

  const ui::Style& style_;
  Direction direction_ = Direction::Across;
  ui::Rect before_;
  ui::Rect after_;
  /// While it is dragged, how far from its edge it was taken hold of.
  std::optional<int> grabbedAt_;
};

}  // namespace app
