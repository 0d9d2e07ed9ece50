#include "ui/widgets/popup_menu.h"

#include <algorithm>
#include <utility>

#include "ui/button.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"

namespace ui {

namespace {

constexpr std::string_view kTick = "✓";

// Logical pixels.
constexpr double kMenuRadius = 6;
constexpr double kMenuPadding = 4;  // between the outline and the entries
constexpr double kEntryRadius = 4;
constexpr double kEntryExtraHeight = 4;  // above that of a row
constexpr double kTextPadding = 12;
constexpr double kTickGap = 8;
constexpr double kKeyGap = 24;
constexpr double kSeparatorHeight = 9;
constexpr double kLeastWidth = 160;
constexpr double kWindowMargin = 4;
constexpr double kWheelStep = 48;

/// Where a menu `length` long begins that is wanted at `wanted`: before that when it would not end
/// `margin` before the `end` of the window, but no nearer to the window's beginning.
int kept(int wanted, int length, int end, int margin) {
  return std::max(std::min(wanted, end - margin - length), margin);
}

}  // namespace

PopupMenu::PopupMenu(const Style& style, std::vector<MenuEntry> entries, int x, int y)
    : style_(style), entries_(std::move(entries)), x_(x), y_(y) {}

// Places.

int PopupMenu::entryHeight(std::size_t entry) const {
  return entries_[entry].separates() ? style_.scaled(kSeparatorHeight)
                                     : style_.rowHeight() + style_.scaled(kEntryExtraHeight);
}

int PopupMenu::contentHeight() const {
  int height = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) height += entryHeight(i);
  return height;
}

/// Of the column of ticks; without any there is none.
int PopupMenu::tickWidth() const {
  if (std::ranges::none_of(entries_, &MenuEntry::ticked)) return 0;
  return style_.textWidth(kTick) + style_.scaled(kTickGap);
}

int PopupMenu::keyRoom(const MenuEntry& entry) const {
  return entry.key.empty() ? 0 : style_.textWidth(entry.key) + style_.scaled(kKeyGap);
}

int PopupMenu::wantedWidth() const {
  int widest = 0;
  for (const MenuEntry& entry : entries_) {
    widest = std::max(widest, style_.textWidth(entry.label) + keyRoom(entry));
  }
  const int around = 2 * (style_.scaled(kTextPadding) + style_.scaled(kMenuPadding));
  return std::max(widest + tickWidth() + around, style_.scaled(kLeastWidth));
}

void PopupMenu::layOut() {
  const int windowWidth = rect().w;
  const int windowHeight = rect().h;
  const int margin = style_.scaled(kWindowMargin);
  const int inner = style_.scaled(kMenuPadding);
  const int content = contentHeight();
  const int h = std::clamp(content + 2 * inner, 1, std::max(1, windowHeight - 2 * margin));
  const int bar = content + 2 * inner > h ? Scroller::kBarWidth : 0;
  const int w = std::clamp(wantedWidth() + bar, 1, std::max(1, windowWidth - 2 * margin));
  const bool fitsBelow = y_ + h <= windowHeight - margin;
  const bool fitsAbove = y_ - h >= margin;
  const int top = !fitsBelow && fitsAbove ? y_ - h : y_;
  panel_ = {kept(x_, w, windowWidth, margin), kept(top, h, windowHeight, margin), w, h};
  scroller_.setView({panel_.x + inner, panel_.y + inner, w - 2 * inner, h - 2 * inner});
  scroller_.setContentHeight(content);
}

Rect PopupMenu::entryRect(std::size_t entry) const {
  const Rect& view = scroller_.view();
  int y = view.y - scroller_.offset();
  for (std::size_t i = 0; i < entry; ++i) y += entryHeight(i);
  return {view.x, y, view.w - scroller_.barWidth(), entryHeight(entry)};
}

std::optional<std::size_t> PopupMenu::choosableAt(int x, int y) const {
  if (!scroller_.view().contains(x, y)) return std::nullopt;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].canBeChosen() && entryRect(i).contains(x, y)) return i;
  }
  return std::nullopt;
}

// What the user does.

void PopupMenu::setCurrent(std::optional<std::size_t> entry) {
  if (current_ == entry) return;
  current_ = entry;
  changed();
}

void PopupMenu::goToFirst() {
  walk(std::nullopt, MenuStep::Down);
  keyed_ = true;
}

void PopupMenu::walk(std::optional<std::size_t> from, MenuStep step) {
  const auto next = nextEntry(entries_, from, step);
  if (!next) return;
  const Rect rect = entryRect(*next);
  scroller_.reveal(rect.y - scroller_.view().y + scroller_.offset(), rect.h);
  setCurrent(next);
}

void PopupMenu::choose(std::size_t entry) {
  const auto action = entries_[entry].action;
  close();
  action();
}

void PopupMenu::press(const MouseEvent& event) {
  if (!panel_.contains(event.x, event.y)) return close();
  if (event.button != kPrimaryButton) return;
  if (scroller_.press(event.x, event.y)) return changed();
  pressed_ = true;
  setCurrent(choosableAt(event.x, event.y));
}

void PopupMenu::motion(const MouseEvent& event) {
  if (scroller_.drag(event.y)) return changed();
  // A menu that comes up is told where the pointer is, moved or not.
  const auto before = std::exchange(pointer_, Point{event.x, event.y});
  if (keyed_ && (!before || before == pointer_)) return;
  keyed_ = false;
  setCurrent(choosableAt(event.x, event.y));
}

void PopupMenu::release(const MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  scroller_.release();
  if (!std::exchange(pressed_, false)) return;
  if (const auto entry = choosableAt(event.x, event.y)) choose(*entry);
}

void PopupMenu::leave() { setCurrent(std::nullopt); }

void PopupMenu::wheel(const MouseEvent& event, int dy) {
  scroller_.scrollBy(dy * style_.scaled(kWheelStep));
  setCurrent(choosableAt(event.x, event.y));
  changed();
}

bool PopupMenu::key(const KeyEvent& event) {
  switch (key::plain(event.keysym)) {
    case key::kUp:
      walk(current_, MenuStep::Up);
      return true;
    case key::kDown:
      walk(current_, MenuStep::Down);
      return true;
    case key::kHome:
      walk(std::nullopt, MenuStep::Down);
      return true;
    case key::kEnd:
      walk(std::nullopt, MenuStep::Up);
      return true;
    case key::kEscape:
    case key::kF10:
    case key::kMenu:
      close();
      return true;
    case key::kReturn:
    case kSpaceKey:
      if (current_) choose(*current_);
      return true;
    default:
      return false;
  }
}

// Drawing.

void PopupMenu::paint(Canvas& canvas) const {
  const Palette& palette = style_.palette();
  fillOutlined(canvas, panel_, style_.scaled(kMenuRadius), 1, palette.border, palette.view);
  canvas.pushClip(scroller_.view());
  for (std::size_t i = 0; i < entries_.size(); ++i) paintEntry(canvas, i);
  canvas.popClip();
  drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
}

void PopupMenu::paintEntry(Canvas& canvas, std::size_t entry) const {
  const Palette& palette = style_.palette();
  const MenuEntry& shown = entries_[entry];
  const Rect rect = entryRect(entry);
  const int padding = style_.scaled(kTextPadding);
  if (shown.separates()) {
    canvas.fillRect({rect.x, rect.y + rect.h / 2, rect.w, std::max(1, style_.scaled(1))},
                    palette.border);
    return;
  }
  const bool current = current_ == entry;
  if (current) canvas.fillRoundRect(rect, style_.scaled(kEntryRadius), palette.accent);
  paintTexts(canvas, shown, {rect.x + padding, rect.y, rect.w - 2 * padding, rect.h}, current);
}

void PopupMenu::paintTexts(Canvas& canvas, const MenuEntry& entry, const Rect& line,
                           bool current) const {
  const Palette& palette = style_.palette();
  const Colour enabled = current ? palette.accentText : palette.text;
  const Colour colour = entry.canBeChosen() ? enabled : palette.dimText;
  if (entry.ticked) drawText(canvas, line, kTick, style_.body(), colour);
  const int tick = tickWidth();
  const Rect label = {line.x + tick, line.y, line.w - tick, line.h};
  drawText(canvas, label, entry.label, style_.body(), colour);
  if (style_.textWidth(entry.label) + keyRoom(entry) > label.w) return;
  drawText(canvas, line, entry.key, style_.body(), current ? colour : palette.dimText,
           Align::Right);
}

}  // namespace ui
