#include "app/map/notice_card.h"

#include <algorithm>

#include "ui/paragraph.h"
#include "ui/text.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kPaddingAcross = 16;
constexpr double kPaddingDown = 10;
constexpr double kMargin = 12;
constexpr double kNoticeRadius = 6;

}  // namespace

void NoticeCard::set(std::string_view text, const ui::Rect& bounds) {
  if (text == text_ && bounds == bounds_) return;
  text_ = text;
  bounds_ = bounds;
  layOut();
}

void NoticeCard::layOut() {
  lines_.clear();
  rect_ = {};
  if (text_.empty() || bounds_.empty()) return;
  const auto measure = [&](std::string_view text) { return style_.textWidth(text); };
  const int across = 2 * style_.scaled(kPaddingAcross);
  const int room = bounds_.w - 2 * style_.scaled(kMargin) - across;
  lines_ = ui::wrappedLines(text_, std::max(1, room), measure);
  int widest = 0;
  for (const std::string& line : lines_) widest = std::max(widest, measure(line));
  const int width = widest + across;
  const int height =
      static_cast<int>(lines_.size()) * style_.lineHeight() + 2 * style_.scaled(kPaddingDown);
  rect_ = {bounds_.x + (bounds_.w - width) / 2, bounds_.y + (bounds_.h - height) / 2, width,
           height};
}

void NoticeCard::paint(ui::Canvas& canvas) const {
  if (rect_.empty()) return;
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(bounds_);
  const int radius = style_.scaled(kNoticeRadius);
  canvas.fillRoundRect(rect_, radius, palette.border);
  canvas.fillRoundRect({rect_.x + 1, rect_.y + 1, rect_.w - 2, rect_.h - 2}, radius - 1,
                       palette.view);
  ui::Rect line = {rect_.x, rect_.y + style_.scaled(kPaddingDown), rect_.w, style_.lineHeight()};
  for (const std::string& text : lines_) {
    ui::drawText(canvas, line, text, style_.body(), palette.dimText, ui::Align::Centre);
    line.y += line.h;
  }
  canvas.popClip();
}

}  // namespace app
