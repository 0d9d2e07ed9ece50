#include "app/frame/status_line.h"

#include <algorithm>

#include "app/model/format.h"
#include "ui/text.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kPadding = 8;
constexpr double kPathGap = 24;
/// Less room than for a few characters: a path cut down to that tells nothing.
constexpr double kLeastRightWidth = 48;

}  // namespace

StatusLayout layOutStatus(const std::string& left, const StatusNote& right, const ui::Rect& bar,
                          double scale, const ui::MeasureText& measure) {
  const int padding = ui::scaled(kPadding, scale);
  const ui::Rect room = {bar.x + padding, bar.y, std::max(bar.w - 2 * padding, 0), bar.h};
  StatusLayout layout;
  int taken = 0;
  if (!left.empty()) {
    const int width = std::min(measure(left), room.w);
    layout.left = {room.x, room.y, width, room.h};
    taken = width + ui::scaled(kPathGap, scale);
  }
  const int free = room.w - taken;
  const int wanted = right.text.empty() ? 0 : measure(right.text);
  if (wanted == 0 || (wanted > free && free < ui::scaled(kLeastRightWidth, scale))) return layout;
  const auto shortened =
      right.cut == StatusNote::Cut::Start ? ui::shortenedAtStart : ui::shortenedAtEnd;
  layout.rightText = shortened(right.text, free, measure);
  const int width = measure(layout.rightText);
  layout.right = {room.x + room.w - width, room.y, width, room.h};
  return layout;
}

void StatusLine::setTexts(const std::string& left, const StatusNote& right) {
  const StatusNote readable = {displayName(right.text), right.cut};
  if (left_ == left && right_ == readable) return;
  left_ = left;
  right_ = readable;
  layOut();
  changed();
}

void StatusLine::layOut() {
  layout_ = layOutStatus(left_, right_, rect(), style_.scale(),
                         [this](std::string_view text) { return style_.textWidth(text); });
}

void StatusLine::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(rect());
  canvas.fillRect(rect(), palette.window);
  canvas.fillRect({rect().x, rect().y, rect().w, 1}, palette.border);
  ui::drawText(canvas, layout_.left, left_, style_.body(), palette.text);
  ui::drawText(canvas, layout_.right, layout_.rightText, style_.body(), palette.dimText);
  canvas.popClip();
}

}  // namespace app
