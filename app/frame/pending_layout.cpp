#include "app/frame/pending_layout.h"

#include <algorithm>
#include <string_view>

#include "app/frame/countdown_ring.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kMargin = 8;
constexpr double kGap = 6;
constexpr double kNameGap = 8;
constexpr double kButtonTextPadding = 20;  // both sides together
constexpr double kButtonExtraHeight = 6;
constexpr double kRowExtraHeight = 4;  // around a button, above and below together
constexpr double kHeadingExtraHeight = 8;
constexpr double kLeastNextToRing = 4;
constexpr double kBottom = 4;

/// The line between the panel and what is above, in device pixels.
constexpr int kBorder = 1;

int buttonHeight(const PendingScale& s) {
  return s.lineHeight + ui::scaled(kButtonExtraHeight, s.scale);
}

int headingHeight(const PendingScale& s) {
  return buttonHeight(s) + ui::scaled(kHeadingExtraHeight, s.scale);
}

/// A button that ends at `right`, in the middle of `line`.
ui::Rect buttonEndingAt(int right, const ui::Rect& line, std::string_view text,
                        const PendingScale& s, const ui::MeasureText& measure) {
  const int wanted = measure(text) + ui::scaled(kButtonTextPadding, s.scale);
  const int width = std::clamp(wanted, 0, std::max(right - line.x, 0));
  const int height = buttonHeight(s);
  return {right - width, line.y + (line.h - height) / 2, width, height};
}

}  // namespace

int pendingRowHeight(const PendingScale& s) {
  const int ring = ui::scaled(kRingSize + kLeastNextToRing, s.scale);
  return std::max({1, ring, buttonHeight(s) + ui::scaled(kRowExtraHeight, s.scale)});
}

int pendingPanelHeight(std::size_t items, const PendingScale& s) {
  if (items == 0) return 0;
  const int rows = static_cast<int>(std::min(items, kMostPendingRows));
  return kBorder + headingHeight(s) + rows * pendingRowHeight(s) + ui::scaled(kBottom, s.scale);
}

PendingLayout layOutPending(const ui::Rect& panel, const PendingScale& s,
                            const ui::MeasureText& measure) {
  const int margin = ui::scaled(kMargin, s.scale);
  const int bottom = ui::scaled(kBottom, s.scale);
  PendingLayout layout;
  const ui::Rect line = {panel.x + margin, panel.y + kBorder, std::max(panel.w - 2 * margin, 0),
                         headingHeight(s)};
  layout.deleteNow = buttonEndingAt(line.x + line.w, line, kDeleteNowText, s, measure);
  const int left = layout.deleteNow.x - ui::scaled(kGap, s.scale);
  layout.undeleteAll = buttonEndingAt(left, line, kUndeleteAllText, s, measure);
  const int room = layout.undeleteAll.x - ui::scaled(kGap, s.scale) - line.x;
  layout.heading = {line.x, line.y, std::max(room, 0), line.h};
  const int above = kBorder + line.h;
  layout.rows = {panel.x, panel.y + above, panel.w, std::max(panel.h - above - bottom, 0)};
  return layout;
}

PendingRowLayout layOutPendingRow(const ui::Rect& row, const PendingScale& s,
                                  const ui::MeasureText& measure) {
  const int margin = ui::scaled(kMargin, s.scale);
  const int ring = ui::scaled(kRingSize, s.scale);
  const int gap = ui::scaled(kNameGap, s.scale);
  PendingRowLayout layout;
  layout.ring = {row.x + margin, row.y + (row.h - ring) / 2, ring, ring};
  const ui::Rect line = {row.x + margin, row.y, std::max(row.w - 2 * margin, 0), row.h};
  layout.undelete = buttonEndingAt(line.x + line.w, line, kUndeleteText, s, measure);
  const int name = layout.ring.x + ring + gap;
  layout.name = {name, row.y, std::max(layout.undelete.x - gap - name, 0), row.h};
  return layout;
}

}  // namespace app
