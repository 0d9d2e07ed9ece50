#include "app/frame/toolbar.h"

#include <algorithm>

#include "ui/text.h"

namespace app {

namespace {

constexpr int kPrimaryButton = 1;

/// The parts by number; the segment of a folder is `kFirstSegment` and its node, so that a press is
/// taken back when another folder comes under the pointer.
enum Control : int { kOpen, kStop, kRescan, kUp, kMeasure, kMenu, kFirstSegment };

const ui::Rect& placeOf(const ToolbarLayout& layout, int control) {
  const ui::Rect* const places[] = {&layout.open, &layout.stop,    &layout.rescan,
                                    &layout.up,   &layout.measure, &layout.menu};
  return *places[control];
}

void call(const std::function<void()>& callable) {
  if (callable) callable();
}

void call(const std::function<void(const ui::Rect&)>& callable, const ui::Rect& rect) {
  if (callable) callable(rect);
}

}  // namespace

bool Toolbar::setRect(const ui::Rect& rect) {
  if (rect_ == rect) return false;
  rect_ = rect;
  layOut();
  return true;
}

bool Toolbar::update(const ToolbarState& state) {
  const bool published = state.tree && state.focus < state.tree->nodeCount();
  if (state_ == state && focusPublished_ == published) return false;
  state_ = state;
  focusPublished_ = published;
  layOut();
  return true;
}

void Toolbar::layOut() {
  layout_ = layOutToolbar(state_, rect_, style_.lineHeight(), style_.scale(),
                          [this](std::string_view text) { return style_.textWidth(text); });
}

ui::PressTracker::Control Toolbar::controlAt(int x, int y) const {
  // The menu first: in a bar too narrow for all it is drawn over the others.
  for (const int control : {kMenu, kOpen, kStop, kRescan, kUp, kMeasure}) {
    if (placeOf(layout_, control).contains(x, y)) return control;
  }
  for (const BreadcrumbSegment& segment : layout_.segments) {
    if (segmentRect(segment).contains(x, y)) return std::int64_t{kFirstSegment} + segment.node;
  }
  return std::nullopt;
}

ui::Rect Toolbar::segmentRect(const BreadcrumbSegment& segment) const {
  const ui::Rect& room = layout_.breadcrumb;
  return ui::intersect({room.x + segment.x, room.y, segment.width, room.h}, room);
}

bool Toolbar::press(const ui::MouseEvent& event) {
  return event.button == kPrimaryButton && presses_.press(controlAt(event.x, event.y));
}

bool Toolbar::motion(const ui::MouseEvent& event) {
  return presses_.motion(controlAt(event.x, event.y));
}

bool Toolbar::release(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton || !presses_.holding()) return false;
  if (const auto control = presses_.release(controlAt(event.x, event.y))) act(*control);
  return true;
}

void Toolbar::act(std::int64_t control) {
  switch (control) {
    case kOpen:
      return call(onOpen);
    case kStop:
      return call(onStop);
    case kRescan:
      return call(onRescan);
    case kUp:
      return call(onUp);
    case kMeasure:
      return call(onMeasureMenu, layout_.measure);
    case kMenu:
      return call(onAppMenu, layout_.menu);
    default:
      if (onSegment) onSegment(static_cast<sizewalk::NodeId>(control - kFirstSegment));
  }
}

ui::PointerShape Toolbar::pointer() const {
  const bool overSegment = std::ranges::any_of(layout_.segments, [&](const auto& segment) {
    return presses_.hovered(std::int64_t{kFirstSegment} + segment.node);
  });
  return overSegment ? ui::PointerShape::Hand : ui::PointerShape::Arrow;
}

void Toolbar::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(rect_);
  canvas.fillRect(rect_, palette.window);
  canvas.fillRect({rect_.x, rect_.y + rect_.h - 1, rect_.w, 1}, palette.border);
  paintControl(canvas, kOpen, kOpenText);
  paintControl(canvas, kStop, kStopText);
  paintControl(canvas, kRescan, kRescanText);
  paintControl(canvas, kUp, kUpText);
  paintControl(canvas, kMeasure, measureSelectorText(state_.measure));
  paintSegments(canvas);
  paintControl(canvas, kMenu, kMenuText);
  canvas.popClip();
}

void Toolbar::paintControl(ui::Canvas& canvas, int control, std::string_view text) const {
  const ui::Button button = {.rect = placeOf(layout_, control),
                             .text = std::string(text),
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
  const bool hovered = presses_.hovered(std::int64_t{kFirstSegment} + segment.node);
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
