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
constexpr double kSwatchSize = 9;
constexpr double kSwatchGap = 6;
/// A text wider than this is shortened.
constexpr double kWidestText = 360;

constexpr std::string_view kClosingQuote = "”";

std::string shortened(const MapCard::Fact& fact, int width, const ui::MeasureText& measure) {
  switch (fact.keeps) {
    case MapCard::Keeps::End:
      return ui::shortenedAtStart(fact.text, width, measure);
    case MapCard::Keeps::BeginningAndQuote: {
      if (measure(fact.text) <= width) return fact.text;
      const std::string_view text(fact.text);
      const std::string_view open = text.substr(0, text.size() - kClosingQuote.size());
      return ui::shortenedAtEnd(open, width - measure(kClosingQuote), measure)
          .append(kClosingQuote);
    }
    case MapCard::Keeps::Beginning:
      break;
  }
  return ui::shortenedAtEnd(fact.text, width, measure);
}

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

int HoverCard::titleIndent() const {
  return card_->swatch ? style_.scaled(kSwatchSize) + style_.scaled(kSwatchGap) : 0;
}

int HoverCard::labelWidth() const {
  int width = 0;
  for (const MapCard::Fact& fact : card_->facts) {
    width = std::max(width, style_.textWidth(fact.label));
  }
  return width + style_.scaled(kColumnGap);
}

int HoverCard::textWidth() const {
  int width = titleIndent() + style_.textWidth(card_->title, style_.strong()) - labels_;
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
  shortenFacts(width - 2 * padding - labels_);
}

void HoverCard::shortenFacts(int width) {
  const auto measure = [&](std::string_view text) { return style_.textWidth(text); };
  for (MapCard::Fact& fact : card_->facts) fact.text = shortened(fact, width, measure);
}

bool HoverCard::hide() {
  const bool shown = card_.has_value();
  card_.reset();
  return shown;
}

void HoverCard::paint(ui::Canvas& canvas) const {
  if (!card_ || ui::intersect(rect_, canvas.clip()).empty()) return;
  canvas.pushClip(rect_);  // where the bounds leave no room for the texts
  paintPanel(canvas);
  const int padding = style_.scaled(kPadding);
  ui::Rect line = {rect_.x + padding, rect_.y + padding, rect_.w - 2 * padding,
                   style_.lineHeight()};
  paintTitle(canvas, line);
  for (const MapCard::Fact& fact : card_->facts) {
    line.y += line.h;
    paintFact(canvas, line, fact);
  }
  canvas.popClip();
}

/// The border has the colour of quiet text, which is told from the panel in both themes; that of
/// other borders is hardly seen between a panel and the map.
void HoverCard::paintPanel(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  const int radius = style_.scaled(kRadius);
  const int border = std::max(1, style_.scaled(1));
  const ui::Rect inside{rect_.x + border, rect_.y + border, rect_.w - 2 * border,
                        rect_.h - 2 * border};
  canvas.fillRoundRect(rect_, radius, palette.dimText);
  canvas.fillRoundRect(inside, radius - border, palette.view);
}

void HoverCard::paintTitle(ui::Canvas& canvas, ui::Rect line) const {
  if (card_->swatch) {
    const int size = style_.scaled(kSwatchSize);
    canvas.fillRect({line.x, line.y + (line.h - size) / 2, size, size}, *card_->swatch);
  }
  line.x += titleIndent();
  line.w -= titleIndent();
  ui::drawText(canvas, line, card_->title, style_.strong(), style_.palette().text);
}

void HoverCard::paintFact(ui::Canvas& canvas, const ui::Rect& line,
                          const MapCard::Fact& fact) const {
  const ui::Palette& palette = style_.palette();
  ui::drawText(canvas, {line.x, line.y, labels_, line.h}, fact.label, style_.body(),
               palette.dimText);
  ui::drawText(canvas, {line.x + labels_, line.y, line.w - labels_, line.h}, fact.text,
               style_.body(), palette.text);
}

}  // namespace app
