#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/widgets/style.h"

namespace app {

/// A quiet panel with a sentence in the middle of a view that has nothing else to show. Window
/// thread only.
class NoticeCard {
 public:
  /// `style` outlives the card.
  explicit NoticeCard(const ui::Style& style) : style_(style) {}

  /// Shows `text` in the middle of `bounds`, in lines as wide as they allow; nothing when it is
  /// empty. Costs nothing while both stay the same.
  void set(std::string_view text, const ui::Rect& bounds);
  const std::string& text() const { return text_; }
  /// Empty while nothing is shown.
  const ui::Rect& rect() const { return rect_; }

  void paint(ui::Canvas& canvas) const;

 private:
  void layOut();

  const ui::Style& style_;
  std::string text_;
  ui::Rect bounds_;
  std::vector<std::string> lines_;
  ui::Rect rect_;
};

}  // namespace app
