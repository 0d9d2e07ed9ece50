#include "app/frame/pending_panel.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/frame/countdown_ring.h"
#include "ui/keys.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::int64_t kUndeleteAll = -1;
constexpr std::int64_t kDeleteNow = -2;

std::int64_t controlOf(const PendingRow& row) { return static_cast<std::int64_t>(row.id); }

}  // namespace

// What is shown, and where.

void PendingPanel::setRows(std::vector<PendingRow> rows) {
  if (rows_ == rows) return;
  const std::size_t currentRow = find(current_).value_or(0);
  const auto firstShown = [this] { return firstInView([](std::size_t) { return true; }); };
  const auto hovered = hoveredRow();
  changeRowsAround(
      hovered ? hovered : firstShown(), [this](std::size_t row) { return controlOf(rows_[row]); },
      [this](Control control) { return find(control); },
      [&] {
        rows_ = std::move(rows);
        setCount(rows_.size());
      });
  keepCurrent(currentRow);
  changed();
}

/// The row that comes after the one that went has the ring then.
void PendingPanel::keepCurrent(std::size_t formerRow) {
  if (current_ < 0 || find(current_)) return;
  current_ = rows_.empty() ? 0 : controlOf(rows_[std::min(formerRow, rows_.size() - 1)]);
}

void PendingPanel::layOut() {
  layout_ = layOutPending(rect(), scale(), measure());
  RowList::layOut();
}

ui::MeasureText PendingPanel::measure() const {
  return [this](std::string_view text) { return style().textWidth(text); };
}

ui::Rect PendingPanel::undeleteRect(std::size_t row) const {
  return layOutPendingRow(rowRect(row), scale(), measure()).undelete;
}

ui::RowRange PendingPanel::shownRows() const {
  return ui::visibleRows(scrollOffset(), view().h, pendingRowHeight(scale()), count());
}

std::optional<std::size_t> PendingPanel::find(Control control) const {
  const auto found = std::ranges::find(rows_, control, controlOf);
  if (found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

bool PendingPanel::bringUpToDate() {
  const ui::RowRange seen = shownRows();
  firstRing_ = seen.first;
  rings_.resize(seen.last - seen.first);
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    drawRing(rows_[row].remaining, &rings_[row - firstRing_]);
  }
  return ButtonView::bringUpToDate();
}

void PendingPanel::drawRing(double remaining, Ring* ring) const {
  if (ring->remaining == remaining) return;
  const ui::Palette& palette = style().palette();
  ring->remaining = remaining;
  ring->pixels = ringPixels(ui::scaled(kRingSize, style().scale()), remaining,
                            ringColour(remaining, palette), palette.window);
}

// The pointer.

ui::ArrivalGuard::Places PendingPanel::buttonPlaces() const {
  Places places;
  if (!rows_.empty()) {
    places = {{kUndeleteAll, layout_.undeleteAll}, {kDeleteNow, layout_.deleteNow}};
  }
  const ui::RowRange seen = shownRows();
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    places.emplace_back(controlOf(rows_[row]), ui::intersect(undeleteRect(row), view()));
  }
  return places;
}

void PendingPanel::press(const ui::MouseEvent& event) {
  if (!pressBar(event)) ButtonView::press(event);
}

void PendingPanel::act(Control control) {
  if (control == kUndeleteAll) {
    if (onUndeleteAll) onUndeleteAll();
  } else if (control == kDeleteNow) {
    if (onDeleteNow) onDeleteNow();
  } else if (onUndelete && find(control)) {
    onUndelete(static_cast<std::uint64_t>(control));
  }
}

// The keys.

bool PendingPanel::key(const ui::KeyEvent& event) {
  if (rows_.empty() || event.ctrl) return false;
  const unsigned long keysym = ui::key::plain(event.keysym);
  if (keysym == ui::key::kReturn || keysym == ui::kSpaceKey) {
    act(current_);
    return true;
  }
  const auto next = controlAfterKey(keysym);
  if (next) goTo(*next);
  return next.has_value();
}

std::optional<PendingPanel::Control> PendingPanel::controlAfterKey(unsigned long keysym) const {
  const auto row = find(current_);
  if (keysym == ui::key::kUp && (!row || *row == 0)) return row ? kUndeleteAll : current_;
  if (!row && keysym == ui::key::kLeft) return kUndeleteAll;
  if (!row && keysym == ui::key::kRight) return kDeleteNow;
  const auto next = rowAfterKey(keysym, row);
  return next ? std::optional(controlOf(rows_[*next])) : std::nullopt;
}

void PendingPanel::goTo(Control control) {
  current_ = control;
  if (const auto row = find(control)) reveal(*row);
  changed();
}

// Drawing.

void PendingPanel::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  canvas.pushClip(rect());
  canvas.fillRect(rect(), palette.window);
  canvas.fillRect({rect().x, rect().y, rect().w, 1}, palette.border);
  paintHeading(canvas);
  RowList::paint(canvas);
  canvas.popClip();
}

void PendingPanel::paintHeading(ui::Canvas& canvas) const {
  ui::drawText(canvas, layout_.heading, kPendingHeading, style().body(), style().palette().text);
  paintControl(canvas, kUndeleteAll, layout_.undeleteAll, kUndeleteAllText);
  paintControl(canvas, kDeleteNow, layout_.deleteNow, kDeleteNowText);
}

void PendingPanel::paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& rect) const {
  const PendingRowLayout place = layOutPendingRow(rect, scale(), measure());
  if (row >= firstRing_ && row - firstRing_ < rings_.size()) {
    canvas.putPixels(place.ring.x, place.ring.y, rings_[row - firstRing_].pixels, place.ring.w,
                     place.ring.h);
  }
  ui::drawText(canvas, place.name, rows_[row].name, style().body(), style().palette().text);
  paintControl(canvas, controlOf(rows_[row]), place.undelete, kUndeleteText);
}

void PendingPanel::paintControl(ui::Canvas& canvas, Control control, const ui::Rect& rect,
                                const char* text) const {
  ui::Button shown = button(control, rect, text);
  shown.focused = focused() && current_ == control;
  ui::paintButton(canvas, shown, style().body(), style().palette());
}

}  // namespace app
