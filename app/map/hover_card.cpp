#include "app/map/hover_card.h"

#include <algorithm>
#include <utility>

#include "ui/text.h"
#include "ui/text_fit.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kPadding = 8;
constexpr double kColumnGap = 12;
constexpr double kDistance = 16;
constexpr double kRadius = 5;
/// A text wider than this is shortened.
constexpr double kWidestText = 360;

/// Along one axis: as near to `wanted` as the bounds allow.
int slid(int wanted, int length, int first, int end) {
  return std::max(first, std::min(wanted, end - length));
}

/// Right of the pointer and below, slid into the bounds.
ui::Rect slidInside(int x, int y, int width, int height, int distance, const ui::Rect& bounds) {
  return {slid(x + distance, width, bounds.x, bounds.x + bounds.w),
          slid(y + distance, height, bounds.y, bounds.y + bounds.h), width, height};
}

/// Nothing where every place at that distance covers the pointer.
std::optional<ui::Rect> placeClearOf(int x, int y, int width, int height, int distance,
                                     const ui::Rect& bounds) {
  ui::Rect place = slidInside(x, y, width, height, distance, bounds);
  if (place.x == x + distance || place.y == y + distance) return place;
  const int above = y - distance - height;
  const int left = x - distance - width;
  if (above >= bounds.y) {
    place.y = above;
  } else if (left >= bounds.x) {
    place.x = left;
  } else {
    return std::nullopt;
  }
  return place;
}

}  // namespace

ui::Rect placeBeside(int x, int y, int width, int height, int distance, const ui::Rect& bounds) {
  for (const int tried : {distance, 1}) {
    if (const auto place = placeClearOf(x, y, width, height, tried, bounds)) return *place;
  }
  return slidInside(x, y, width, height, distance, bounds);
}

int HoverCard::labelWidth() const {
  int width = 0;
  for (const MapCard::Fact& fact : card_->facts) {
    width = std::max(width, style_.textWidth(fact.label));
  }
  return width + style_.scaled(kColumnGap);
}

int HoverCard::textWidth() const {
  int width = style_.textWidth(card_->title) - labels_;
  for (const MapCard::Fact& fact : card_->facts) {
    width = std::max(width, style_.textWidth(fact.text));
  }
  return std::min(width, style_.scaled(kWidestText));
}

void HoverCard::show(MapCard card, int x, int y, const ui::Rect& bounds) {
  card_ = std::move(card);
  labels_ = labelWidth();
  const int padding = style_.scaled(kPadding);
  const int lines = static_cast<int>(card_->facts.size()) + 1;
  const int width = std::min(labels_ + textWidth() + 2 * padding, bounds.w);
  const int height = std::min(lines * style_.lineHeight() + 2 * padding, bounds.h);
  rect_ = placeBeside(x, y, width, height, style_.scaled(kDistance), bounds);
  shortenPaths(width - 2 * padding - labels_);
}

void HoverCard::shortenPaths(int width) {
  const auto measure = [&](std::string_view text) { return style_.textWidth(text); };
  for (MapCard::Fact& fact : card_->facts) {
    if (fact.keeps != MapCard::Keeps::End) continue;
    fact.text = ui::shortenedAtStart(fact.text, width, measure);
  }
}

bool HoverCard::hide() {
  const bool shown = card_.has_value();
  card_.reset();
  return shown;
}

void HoverCard::paint(ui::Canvas& canvas) const {
  if (!card_) return;
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(rect_);  // where the bounds leave no room for the texts
  const int radius = style_.scaled(kRadius);
  canvas.fillRoundRect(rect_, radius, palette.border);
  canvas.fillRoundRect({rect_.x + 1, rect_.y + 1, rect_.w - 2, rect_.h - 2}, radius - 1,
                       palette.view);
  const int padding = style_.scaled(kPadding);
  const int left = rect_.x + padding;
  const int right = rect_.x + rect_.w - padding;
  const int lineHeight = style_.lineHeight();
  int y = rect_.y + padding;
  ui::drawText(canvas, {left, y, right - left, lineHeight}, card_->title, style_.body(),
               palette.text);
  for (const MapCard::Fact& fact : card_->facts) {
    y += lineHeight;
    ui::drawText(canvas, {left, y, labels_, lineHeight}, fact.label, style_.body(),
                 palette.dimText);
    ui::drawText(canvas, {left + labels_, y, right - left - labels_, lineHeight}, fact.text,
                 style_.body(), palette.text);
  }
  canvas.popClip();
}

}  // namespace app
