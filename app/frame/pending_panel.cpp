#include "app/frame/pending_panel.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/frame/countdown_ring.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::int64_t kUndeleteAll = -1;
constexpr std::int64_t kDeleteNow = -2;

constexpr int kPrimaryButton = 1;
constexpr int kWheelRows = 3;
constexpr unsigned long kSpace = ' ';

std::int64_t controlOf(const PendingRow& row) { return static_cast<std::int64_t>(row.id); }

}  // namespace

// What is shown, and where.

void PendingPanel::setRows(std::vector<PendingRow> rows) {
  if (rows_ == rows) return;
  const auto kept = rowToKeep();
  const Control keptControl = kept ? controlOf(rows_[*kept]) : 0;
  const int keptY = kept ? rowRect(*kept).y : 0;
  const std::size_t currentRow = find(current_).value_or(0);
  rows_ = std::move(rows);
  scroller_.setContentHeight(ui::contentHeight(rows_.size(), rowHeight()));
  if (const auto row = kept ? find(keptControl) : std::nullopt) {
    scroller_.scrollBy(rowRect(*row).y - keptY);
  }
  keepCurrent(currentRow);
  hoverAgain();
  changed();
}

/// That under the pointer, else the first that shows.
std::optional<std::size_t> PendingPanel::rowToKeep() const {
  const int y = pointer_ && scroller_.view().contains(pointer_->x, pointer_->y)
                    ? pointer_->y
                    : scroller_.view().y;
  return ui::rowAtOffset(std::int64_t{y} - scroller_.view().y + scroller_.offset(), rowHeight(),
                         rows_.size());
}

/// The row that comes after the one that went has the ring then.
void PendingPanel::keepCurrent(std::size_t formerRow) {
  if (current_ < 0 || find(current_)) return;
  current_ = rows_.empty() ? 0 : controlOf(rows_[std::min(formerRow, rows_.size() - 1)]);
}

void PendingPanel::layOut() {
  layout_ = layOutPending(rect(), scale(), measure());
  scroller_.setView(layout_.rows);
  scroller_.setContentHeight(ui::contentHeight(rows_.size(), rowHeight()));
  hoverAgain();
}

ui::MeasureText PendingPanel::measure() const {
  return [this](std::string_view text) { return style_.textWidth(text); };
}

ui::Rect PendingPanel::rowRect(std::size_t row) const {
  const int height = rowHeight();
  const int y = layout_.rows.y + ui::rowPlace(ui::rowTop(row, height), scroller_.offset());
  return {layout_.rows.x, y, layout_.rows.w - scroller_.barWidth(), height};
}

PendingRowLayout PendingPanel::rowLayout(std::size_t row) const {
  return layOutPendingRow(rowRect(row), scale(), measure());
}

ui::Rect PendingPanel::undeleteRect(std::size_t row) const { return rowLayout(row).undelete; }

ui::RowRange PendingPanel::visible() const {
  return ui::visibleRows(scroller_.offset(), scroller_.view().h, rowHeight(), rows_.size());
}

std::optional<std::size_t> PendingPanel::find(Control control) const {
  const auto found = std::ranges::find(rows_, control, controlOf);
  if (found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

bool PendingPanel::bringUpToDate() {
  placeControls();
  const ui::RowRange seen = visible();
  firstRing_ = seen.first;
  rings_.resize(seen.last - seen.first);
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    drawRing(rows_[row].remaining, &rings_[row - firstRing_]);
  }
  return false;
}

void PendingPanel::drawRing(double remaining, Ring* ring) const {
  if (ring->remaining == remaining) return;
  const ui::Palette& palette = style_.palette();
  ring->remaining = remaining;
  ring->pixels = ringPixels(ui::scaled(kRingSize, style_.scale()), remaining,
                            ringColour(remaining, palette), palette.window);
}

// The pointer.

ui::PressTracker::Control PendingPanel::controlAt(int x, int y) const {
  if (layout_.undeleteAll.contains(x, y)) return kUndeleteAll;
  if (layout_.deleteNow.contains(x, y)) return kDeleteNow;
  if (!layout_.rows.contains(x, y)) return std::nullopt;
  const auto row = ui::rowAtOffset(std::int64_t{y} - layout_.rows.y + scroller_.offset(),
                                   rowHeight(), rows_.size());
  if (!row || !undeleteRect(*row).contains(x, y)) return std::nullopt;
  return controlOf(rows_[*row]);
}

/// Rows and rectangle change one after the other: only what comes of both counts.
void PendingPanel::placeControls() {
  ui::ArrivalGuard::Places places;
  if (!rows_.empty()) {
    places = {{kUndeleteAll, layout_.undeleteAll}, {kDeleteNow, layout_.deleteNow}};
  }
  const ui::RowRange seen = visible();
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    places[controlOf(rows_[row])] = undeleteRect(row);
  }
  guard_.place(places);
}

void PendingPanel::hoverAgain() {
  if (pointer_) presses_.motion(controlAt(pointer_->x, pointer_->y));
}

void PendingPanel::pointerSeen(int x, int y) {
  placeControls();
  guard_.pointerAt(x, y, controlAt(x, y));
}

void PendingPanel::tick(std::int64_t nowMs) {
  placeControls();
  guard_.tick(nowMs);
}

void PendingPanel::press(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  pointer_ = event;
  const bool onBar = scroller_.press(event.x, event.y);
  const MaybeControl control = onBar ? std::nullopt : controlAt(event.x, event.y);
  placeControls();
  const bool taken = control && guard_.takesPress(*control, event.x, event.y, event.timeMs);
  presses_.press(taken ? control : std::nullopt);
  if (taken) current_ = *control;
  changed();
}

void PendingPanel::motion(const ui::MouseEvent& event) {
  pointer_ = event;
  const bool dragged = scroller_.drag(event.y);
  pointerSeen(event.x, event.y);
  const MaybeControl under = dragged ? std::nullopt : controlAt(event.x, event.y);
  if (presses_.motion(under) || dragged) changed();
}

void PendingPanel::release(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  scroller_.release();
  if (!presses_.holding()) return;
  const MaybeControl control = presses_.release(controlAt(event.x, event.y));
  changed();
  if (control) act(*control);
}

void PendingPanel::leave() {
  pointer_.reset();
  if (presses_.leave()) changed();
}

void PendingPanel::wheel(const ui::MouseEvent& /*event*/, int dy) {
  scroller_.scrollBy(dy * kWheelRows * rowHeight());
  hoverAgain();
  changed();
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
  if (keysym == ui::key::kReturn || keysym == kSpace) {
    act(current_);
    return true;
  }
  const auto next = controlAfterKey(keysym);
  if (next) goTo(*next);
  return next.has_value();
}

std::optional<PendingPanel::Control> PendingPanel::controlAfterKey(unsigned long keysym) const {
  const std::size_t last = rows_.size() - 1;
  const std::size_t page = ui::rowsInPage(layout_.rows.h, rowHeight());
  const auto row = find(current_);
  const auto control = [&](std::size_t number) {
    return std::optional(controlOf(rows_[std::min(number, last)]));
  };
  switch (keysym) {
    case ui::key::kUp:
      if (!row) return current_;
      return *row == 0 ? kUndeleteAll : control(*row - 1);
    case ui::key::kDown:
      return control(row ? *row + 1 : 0);
    case ui::key::kPageUp:
      return control(row ? *row - std::min(*row, page) : 0);
    case ui::key::kPageDown:
      return control(row ? *row + page : 0);
    case ui::key::kHome:
      return control(0);
    case ui::key::kEnd:
      return control(last);
    case ui::key::kLeft:
    case ui::key::kRight:
      if (row) return std::nullopt;
      return keysym == ui::key::kLeft ? kUndeleteAll : kDeleteNow;
    default:
      return std::nullopt;
  }
}

void PendingPanel::goTo(Control control) {
  current_ = control;
  if (const auto row = find(control)) {
    const auto top = std::min<std::int64_t>(ui::rowTop(*row, rowHeight()), ui::kMostContentHeight);
    scroller_.reveal(static_cast<int>(top), rowHeight());
  }
  hoverAgain();
  changed();
}

// Drawing.

void PendingPanel::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(rect());
  canvas.fillRect(rect(), palette.window);
  canvas.fillRect({rect().x, rect().y, rect().w, 1}, palette.border);
  paintHeading(canvas);
  canvas.pushClip(layout_.rows);
  const ui::RowRange seen = visible();
  for (std::size_t row = seen.first; row < seen.last; ++row) paintRow(canvas, row);
  canvas.popClip();
  ui::drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
  canvas.popClip();
}

void PendingPanel::paintHeading(ui::Canvas& canvas) const {
  ui::drawText(canvas, layout_.heading, kPendingHeading, style_.body(), style_.palette().text);
  paintControl(canvas, kUndeleteAll, layout_.undeleteAll, kUndeleteAllText);
  paintControl(canvas, kDeleteNow, layout_.deleteNow, kDeleteNowText);
}

void PendingPanel::paintRow(ui::Canvas& canvas, std::size_t row) const {
  const PendingRowLayout place = rowLayout(row);
  if (row >= firstRing_ && row - firstRing_ < rings_.size()) {
    canvas.putPixels(place.ring.x, place.ring.y, rings_[row - firstRing_].pixels, place.ring.w,
                     place.ring.h);
  }
  ui::drawText(canvas, place.name, rows_[row].name, style_.body(), style_.palette().text);
  paintControl(canvas, controlOf(rows_[row]), place.undelete, kUndeleteText);
}

void PendingPanel::paintControl(ui::Canvas& canvas, Control control, const ui::Rect& rect,
                                const char* text) const {
  const ui::Button button = {.rect = rect,
                             .text = text,
                             .hovered = presses_.hovered(control),
                             .pressed = presses_.pressed(control),
                             .focused = focused() && current_ == control};
  ui::paintButton(canvas, button, style_.body(), style_.palette());
}

}  // namespace app
