#pragma once

#include <optional>

#include "app/map/map_card.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/widgets/style.h"

namespace app {

/// A small panel beside the pointer that tells of the item under it. Window thread only.
class HoverCard {
 public:
  /// `style` outlives the card.
  explicit HoverCard(const ui::Style& style) : style_(style) {}

  /// Shows `card` beside the pointer at (x, y), within `bounds`; cut off where they are too small.
  void show(MapCard card, int x, int y, const ui::Rect& bounds);
  /// True when there was something to hide.
  bool hide();
  bool shown() const { return card_.has_value(); }
  const std::optional<MapCard>& card() const { return card_; }
  const ui::Rect& rect() const { return rect_; }

  void paint(ui::Canvas& canvas) const;

 private:
  int titleIndent() const;
  int labelWidth() const;
  int textWidth() const;
  void shortenFacts(int width);
  void paintPanel(ui::Canvas& canvas) const;
  void paintTitle(ui::Canvas& canvas, ui::Rect line) const;
  void paintFact(ui::Canvas& canvas, const ui::Rect& line, const MapCard::Fact& fact) const;

  const ui::Style& style_;
  std::optional<MapCard> card_;
  ui::Rect rect_;
  /// Of the column of labels, gap included.
  int labels_ = 0;
};

/// Where a panel of `width` x `height` goes beside a pointer at (x, y), inside `bounds`: right of
/// it and below. Where one of the two has no room it slides along that edge; where both have none
/// it goes above the pointer, else to its left, else as near as a pixel. It covers the pointer only
/// where nothing else is possible, and begins at the bounds' near edge if it is larger than they
/// are.
ui::Rect placeBeside(int x, int y, int width, int height, int distance, const ui::Rect& bounds);

}  // namespace app
