#include "app/frame/toolbar.h"

#include <algorithm>
#include <utility>

#include "ui/text.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kProgressThickness = 2;
constexpr double kFiguresGap = 12;

std::string_view whatItDoes(Action action) {
  switch (action) {
    case Action::LeaveScan:
      return "Choose another folder to scan";
    case Action::StopScan:
      return "Stop the scan and keep what it has found";
    case Action::Rescan:
      return "Scan this folder again";
    case Action::GoOut:
      return "One folder up";
    case Action::OpenMeasureMenu:
      return "Choose what is measured";
    case Action::OpenApplicationMenu:
      return "Menu";
    default:
      return {};
  }
}

}  // namespace

void Toolbar::update(const ToolbarState& state) {
  const bool published = state.tree && state.focus < state.tree->nodeCount();
  if (state_ == state && focusPublished_ == published) return;
  state_ = state;
  focusPublished_ = published;
  layOut();
  changed();
}

void Toolbar::setFigures(std::optional<FolderFigures> figures) {
  if (figures_ == figures) return;
  figures_ = figures;
  placeFigures();
  changed(layout_.breadcrumb);
}

void Toolbar::placeFigures() {
  shownFigures_ = {};
  if (!figures_ || layout_.segments.empty()) return;
  const ui::Rect& room = layout_.breadcrumb;
  const BreadcrumbSegment& last = layout_.segments.back();
  const int left = room.x + last.x + last.width + style_.scaled(kFiguresGap);
  for (std::string& text : figuresTexts(*figures_)) {
    const int width = style_.textWidth(text);
    if (left + width > room.x + room.w) continue;
    shownFigures_ = {std::move(text), {left, room.y, width, room.h}};
    return;
  }
}

void Toolbar::setProgress(double share) {
  const int before = progressWidth();
  progress_ = share;
  if (progressWidth() != before) changed(progressPlace());
}

ui::Rect Toolbar::progressPlace() const {
  const int thickness = std::max(1, style_.scaled(kProgressThickness));
  return {rect().x, rect().y + rect().h - thickness, rect().w, thickness};
}

int Toolbar::progressWidth() const { return static_cast<int>(progress_ * rect().w); }

void Toolbar::layOut() {
  const bool first = layout_.buttons.empty();
  layout_ = layOutToolbar(state_, rect(), style_.lineHeight(), style_.scale(),
                          [this](std::string_view text) { return style_.textWidth(text); });
  placeFigures();
  // The window opens: what it has takes nobody's place.
  if (first) settleButtons();
}

ui::ArrivalGuard::Places Toolbar::buttonPlaces() const {
  Places places;
  for (std::size_t i = 0; i < layout_.buttons.size(); ++i) {
    const ui::Rect& rect = layout_.buttons[i].rect;
    if (!rect.empty()) places.emplace_back(static_cast<Control>(i), rect);
  }
  for (const BreadcrumbSegment& segment : layout_.segments) {
    places.emplace_back(controlOf(segment), segmentRect(segment));
  }
  return places;
}

ui::ArrivalGuard::Control Toolbar::controlOf(const BreadcrumbSegment& segment) const {
  return static_cast<Control>(layout_.buttons.size()) + segment.node;
}

ui::Rect Toolbar::segmentRect(const BreadcrumbSegment& segment) const {
  const ui::Rect& room = layout_.breadcrumb;
  return ui::intersect({room.x + segment.x, room.y, segment.width, room.h}, room);
}

/// The letters of a segment may reach beyond its place.
ui::Rect Toolbar::reachOf(Control control, const ui::Rect& place) const {
  const bool isButton = control < static_cast<Control>(layout_.buttons.size());
  return isButton ? place : layout_.breadcrumb;
}

void Toolbar::act(Control control) {
  if (!onCommand) return;
  const auto buttons = static_cast<Control>(layout_.buttons.size());
  if (control < buttons) {
    onCommand({.action = layout_.buttons[static_cast<std::size_t>(control)].action});
  } else {
    const auto node = static_cast<sizewalk::NodeId>(control - buttons);
    onCommand({.action = Action::GoTo, .target = node});
  }
}

std::string Toolbar::hint() const {
  for (std::size_t i = 0; i < layout_.buttons.size(); ++i) {
    if (!hovered(static_cast<Control>(i))) continue;
    const Action action = layout_.buttons[i].action;
    const std::string key = keyOf({.action = action});
    std::string hint(whatItDoes(action));
    if (!key.empty()) hint.append(" (").append(key).append(")");
    return hint;
  }
  return {};
}

ui::PointerShape Toolbar::pointer() const {
  const bool overSegment = std::ranges::any_of(
      layout_.segments, [&](const auto& segment) { return hovered(controlOf(segment)); });
  return overSegment ? ui::PointerShape::Hand : ui::PointerShape::Arrow;
}

void Toolbar::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  const ui::Rect& bar = rect();
  canvas.pushClip(bar);
  canvas.fillRect(bar, palette.window);
  canvas.fillRect({bar.x, bar.y + bar.h - 1, bar.w, 1}, palette.border);
  ui::Rect progress = progressPlace();
  progress.w = progressWidth();
  canvas.fillRect(progress, palette.accent);
  paintSegments(canvas);
  ui::drawText(canvas, shownFigures_.rect, shownFigures_.text, style_.body(), palette.dimText);
  // Those that lie over others last.
  for (std::size_t i = layout_.buttons.size(); i-- > 0;) paintButton(canvas, i);
  canvas.popClip();
}

void Toolbar::paintButton(ui::Canvas& canvas, std::size_t number) const {
  const ToolbarButton& shown = layout_.buttons[number];
  ui::paintButton(canvas, button(static_cast<Control>(number), shown.rect, shown.text),
                  style_.body(), style_.palette());
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
  const bool over = hovered(controlOf(segment));
  const bool last = &segment == &layout_.segments.back();
  const ui::Palette& palette = style_.palette();
  const ui::Colour resting = last ? palette.text : palette.dimText;
  const ui::Colour colour = over ? palette.link : resting;
  ui::drawText(canvas, rect, segment.text, style_.body(), colour);
  if (!over || rect.empty()) return;
  const ui::Font& font = style_.body();
  const int baseline = rect.y + (rect.h - font.height) / 2 + font.ascent;
  const int thickness = std::max(1, style_.scaled(1));
  canvas.fillRect({rect.x, baseline + thickness, rect.w, thickness}, colour);
}

}  // namespace app
