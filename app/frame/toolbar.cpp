#include "app/frame/toolbar.h"

#include <algorithm>

#include "ui/text.h"

namespace app {

namespace {
constexpr int kPrimaryButton = 1;
}

void Toolbar::update(const ToolbarState& state) {
  const bool published = state.tree && state.focus < state.tree->nodeCount();
  if (state_ == state && focusPublished_ == published) return;
  state_ = state;
  focusPublished_ = published;
  layOut();
  changed();
}

void Toolbar::layOut() {
  layout_ = layOutToolbar(state_, rect(), style_.lineHeight(), style_.scale(),
                          [this](std::string_view text) { return style_.textWidth(text); });
}

ui::PressTracker::Control Toolbar::controlAt(int x, int y) const {
  for (std::size_t i = 0; i < layout_.buttons.size(); ++i) {
    if (layout_.buttons[i].rect.contains(x, y)) return static_cast<std::int64_t>(i);
  }
  for (const BreadcrumbSegment& segment : layout_.segments) {
    if (segmentRect(segment).contains(x, y)) return controlOf(segment);
  }
  return std::nullopt;
}

std::int64_t Toolbar::controlOf(const BreadcrumbSegment& segment) const {
  return static_cast<std::int64_t>(layout_.buttons.size()) + segment.node;
}

ui::Rect Toolbar::segmentRect(const BreadcrumbSegment& segment) const {
  const ui::Rect& room = layout_.breadcrumb;
  return ui::intersect({room.x + segment.x, room.y, segment.width, room.h}, room);
}

void Toolbar::press(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  if (presses_.press(controlAt(event.x, event.y))) changed();
}

void Toolbar::motion(const ui::MouseEvent& event) {
  if (presses_.motion(controlAt(event.x, event.y))) changed();
}

void Toolbar::leave() {
  if (presses_.leave()) changed();
}

void Toolbar::release(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton || !presses_.holding()) return;
  const auto control = presses_.release(controlAt(event.x, event.y));
  changed();
  if (control) act(*control);
}

void Toolbar::act(std::int64_t control) {
  if (!onCommand) return;
  const auto buttons = static_cast<std::int64_t>(layout_.buttons.size());
  if (control < buttons) {
    onCommand({.action = layout_.buttons[static_cast<std::size_t>(control)].action});
  } else {
    const auto node = static_cast<sizewalk::NodeId>(control - buttons);
    onCommand({.action = Action::GoTo, .target = node});
  }
}

ui::PointerShape Toolbar::pointer() const {
  const bool overSegment = std::ranges::any_of(
      layout_.segments, [&](const auto& segment) { return presses_.hovered(controlOf(segment)); });
  return overSegment ? ui::PointerShape::Hand : ui::PointerShape::Arrow;
}

void Toolbar::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  const ui::Rect& bar = rect();
  canvas.pushClip(bar);
  canvas.fillRect(bar, palette.window);
  canvas.fillRect({bar.x, bar.y + bar.h - 1, bar.w, 1}, palette.border);
  paintSegments(canvas);
  // Those that lie over others last.
  for (std::size_t i = layout_.buttons.size(); i-- > 0;) paintButton(canvas, i);
  canvas.popClip();
}

void Toolbar::paintButton(ui::Canvas& canvas, std::size_t number) const {
  const ToolbarButton& shown = layout_.buttons[number];
  const auto control = static_cast<std::int64_t>(number);
  const ui::Button button = {.rect = shown.rect,
                             .text = shown.text,
                             .hovered = presses_.hovered(control),
                             .pressed = presses_.pressed(control)};
  ui::paintButton(canvas, button, style_.body(), style_.palette());
}

void Toolbar::paintSegments(ui::Canvas& canvas) const {
  const ui::Rect& room = layout_.breadcrumb;
  canvas.pushClip(room);
  for (const BreadcrumbSegment& segment : layout_.segments) {
    paintSegment(canvas, segment);
    if (&segment == &layout_.segments.back()) break;
    const int x = room.x + segment.x + segment.width;
    ui::drawText(canvas, {x, room.y, room.x + room.w - x, room.h}, kBreadcrumbSeparator,
                 style_.body(), style_.palette().dimText);
  }
  canvas.popClip();
}

void Toolbar::paintSegment(ui::Canvas& canvas, const BreadcrumbSegment& segment) const {
  const ui::Rect rect = segmentRect(segment);
  const bool hovered = presses_.hovered(controlOf(segment));
  const bool last = &segment == &layout_.segments.back();
  const ui::Palette& palette = style_.palette();
  const ui::Colour resting = last ? palette.text : palette.dimText;
  const ui::Colour colour = hovered ? palette.link : resting;
  ui::drawText(canvas, rect, segment.text, style_.body(), colour);
  if (!hovered || rect.empty()) return;
  const ui::Font& font = style_.body();
  const int baseline = rect.y + (rect.h - font.height) / 2 + font.ascent;
  const int thickness = std::max(1, style_.scaled(1));
  canvas.fillRect({rect.x, baseline + thickness, rect.w, thickness}, colour);
}

}  // namespace app
