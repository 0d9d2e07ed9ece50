#include "app/frame/toolbar_layout.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace app {

namespace {

// Logical pixels.
constexpr double kToolRowPadding = 8;
constexpr double kTextPadding = 20;  // of a button around its text, both sides together
/// Tells the way to the folder in focus from the buttons on its two sides.
constexpr double kBreadcrumbGap = 12;

// Device pixels: gaps that stay as thin on large screens.
constexpr int kToolbarGap = 6;
constexpr int kToolButtonExtraHeight = 6;
constexpr int kGlyphExtraWidth = 10;

/// Hands out places from left to right.
class Lane {
 public:
  Lane(const ui::Rect& bar, int height, int left)
      : height_(height), y_(bar.y + (bar.h - height) / 2), next_(left) {}

  ui::Rect take(int width) {
    const ui::Rect place = {next_, y_, width, height_};
    next_ += width + kToolbarGap;
    return place;
  }
  ui::Rect at(int x, int width) const { return {x, y_, width, height_}; }

 private:
  int height_;
  int y_;
  int next_;
};

}  // namespace

std::string_view measureName(Measure measure) {
  switch (measure) {
    case Measure::CurrentSize:
      return "Current size";
    case Measure::AddedLastMonth:
      return "Added in the last month";
    case Measure::AddedLastSixMonths:
      return "Added in the last six months";
    case Measure::AddedSinceLastScan:
      return "Added since last scan";
  }
  return {};
}

std::string measureSelectorText(Measure measure) {
  return std::string(measureName(measure)) + "  ▾";
}

ui::Rect ToolbarLayout::place(Action action) const {
  const auto found = std::ranges::find(buttons, action, &ToolbarButton::action);
  return found == buttons.end() ? ui::Rect{} : found->rect;
}

ToolbarLayout layOutToolbar(const ToolbarState& state, const ui::Rect& bar, int lineHeight,
                            double scale, const std::function<int(std::string_view)>& measureText) {
  const int padding = ui::scaled(kToolRowPadding, scale);
  const int glyphWidth = lineHeight + kGlyphExtraWidth;
  Lane lane(bar, lineHeight + kToolButtonExtraHeight, bar.x + padding);
  ToolbarLayout layout;
  const int menuLeft = bar.x + bar.w - padding - glyphWidth;
  layout.buttons.push_back({Action::OpenApplicationMenu,
                            std::string(labelOf(Action::OpenApplicationMenu)),
                            lane.at(menuLeft, glyphWidth)});
  const bool shown = state.tree != nullptr;
  const auto add = [&](Action action, bool isShown, std::optional<int> width = {}) {
    std::string text = action == Action::OpenMeasureMenu ? measureSelectorText(state.measure)
                                                         : std::string(labelOf(action));
    const int own = measureText(text) + ui::scaled(kTextPadding, scale);
    const ui::Rect rect = shown && isShown ? lane.take(width.value_or(own)) : ui::Rect{};
    layout.buttons.push_back({action, std::move(text), rect});
  };
  add(Action::LeaveScan, true);
  add(Action::StopScan, state.scanning);
  add(Action::Rescan, !state.scanning);
  add(Action::GoOut, state.canGoUp, glyphWidth);
  add(Action::OpenMeasureMenu, true);
  if (!shown) return layout;

  const ui::Rect measures = layout.place(Action::OpenMeasureMenu);
  const int gap = ui::scaled(kBreadcrumbGap, scale);
  const int left = measures.x + measures.w + gap;
  layout.breadcrumb = lane.at(left, std::max(menuLeft - gap - left, 0));
  if (!layout.breadcrumb.empty()) {
    layout.segments = breadcrumb(*state.tree, state.focus, layout.breadcrumb.w, measureText);
  }
  return layout;
}

}  // namespace app
