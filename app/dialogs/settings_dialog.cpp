#include "app/dialogs/settings_dialog.h"

#include <algorithm>

#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::string_view kHeading = "Settings";
constexpr ui::Colour kKnob = 0xFFFFFFFF;

// Points.
constexpr double kSmallSize = 8.5;

// Logical pixels.
constexpr double kSettingsWidth = 520;
constexpr double kSettingsFrame = 2 * 12;  // margin of the panel, both sides
constexpr double kTitleGap = 8;
constexpr double kRowRadius = 6;
constexpr double kRowPadding = 10;
constexpr double kRowPaddingAbove = 6;  // and below
constexpr double kSwitchGap = 16;
constexpr double kSwitchWidth = 36;
constexpr double kSwitchHeight = 20;
constexpr double kSwitchOutline = 1;
constexpr double kKnobGap = 2;
constexpr double kScrollBarGap = 4;
constexpr double kSettingsWheelStep = 48;

int heightOf(const auto& places) {
  return places.empty() ? 0 : places.back().top + places.back().height;
}

}  // namespace

SettingsDialog::SettingsDialog(ui::Connection& connection, const ui::Style& style,
                               SettingsStore& store)
    : ui::Dialog(style),
      connection_(connection),
      store_(store),
      small_(connection.font(kSmallSize, ui::FontWeight::Regular)),
      rows_(settingsRows(store)) {
  setButtons({{"Reset All", ui::ButtonKind::Plain, [this] { reset(); }},
              {"Done", ui::ButtonKind::Default, [this] { close(); }}});
}

// Places.

int SettingsDialog::headingHeight() const {
  return style().heading().height + style().scaled(kTitleGap);
}

int SettingsDialog::explanationWidth(int rowWidth) const {
  const int beside =
      2 * style().scaled(kRowPadding) + style().scaled(kSwitchGap) + style().scaled(kSwitchWidth);
  return std::max(1, rowWidth - beside);
}

std::vector<SettingsDialog::RowPlace> SettingsDialog::rowPlaces(int width) const {
  const int padding = 2 * style().scaled(kRowPaddingAbove);
  std::vector<RowPlace> places;
  for (const SettingsRow& row : rows_) {
    RowPlace place{.top = heightOf(places), .height = 0, .explanation = {}};
    if (!row.explanation.empty()) {
      place.explanation =
          ui::Paragraph(connection_, row.explanation, small_, explanationWidth(width));
    }
    const int texts = style().lineHeight() + place.explanation.height();
    place.height = padding + std::max(texts, style().scaled(kSwitchHeight));
    places.push_back(std::move(place));
  }
  return places;
}

ui::Rect SettingsDialog::wantedPanel(int width, int /*height*/) const {
  const int w = std::min(style().scaled(kSettingsWidth), width - style().scaled(kSettingsFrame));
  const int rows = heightOf(rowPlaces(w - 2 * padding()));
  return {0, 0, w, headingHeight() + rows + buttonRowHeight() + 2 * padding()};
}

void SettingsDialog::layOutContent(const ui::Rect& content) {
  heading_ = {content.x, content.y, content.w, style().heading().height};
  const int above = headingHeight();
  const ui::Rect list = {content.x, content.y + above, content.w, std::max(0, content.h - above)};
  places_ = rowPlaces(content.w);
  if (heightOf(places_) > list.h) {
    places_ = rowPlaces(content.w - ui::Scroller::kBarWidth - style().scaled(kScrollBarGap));
  }
  scroller_.setView(list);
  scroller_.setContentHeight(heightOf(places_));
  keyboardMoved();
}

ui::Rect SettingsDialog::rowRect(std::size_t row) const {
  const ui::Rect& list = scroller_.view();
  const int bar = scroller_.hasBar() ? scroller_.barWidth() + style().scaled(kScrollBarGap) : 0;
  const RowPlace& place = places_[row];
  return {list.x, list.y + place.top - scroller_.offset(), list.w - bar, place.height};
}

ui::Rect SettingsDialog::switchRect(std::size_t row) const {
  const ui::Rect rect = rowRect(row);
  const int w = style().scaled(kSwitchWidth);
  const int h = style().scaled(kSwitchHeight);
  return {rect.x + rect.w - style().scaled(kRowPadding) - w, rect.y + (rect.h - h) / 2, w, h};
}

ui::PressTracker::Control SettingsDialog::controlAt(int x, int y) const {
  if (!scroller_.view().contains(x, y)) return std::nullopt;
  for (std::size_t row = 0; row < places_.size(); ++row) {
    if (rowRect(row).contains(x, y)) return static_cast<std::int64_t>(row);
  }
  return std::nullopt;
}

// What the user does.

bool SettingsDialog::act(int control) {
  const SettingsRow& row = rows_[static_cast<std::size_t>(control)];
  row.set(!row.get());
  giveKeyboardTo(control);
  settingsChanged();
  return true;
}

void SettingsDialog::reset() {
  resetAll(store_);
  settingsChanged();
}

void SettingsDialog::settingsChanged() {
  changed();
  if (onSettingsChanged) onSettingsChanged();
}

void SettingsDialog::press(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton && scroller_.press(event.x, event.y)) {
    changed();
  } else {
    ui::Dialog::press(event);
  }
}

void SettingsDialog::motion(const ui::MouseEvent& event) {
  pointer_ = event;
  if (scroller_.drag(event.y)) {
    changed();
  } else {
    ui::Dialog::motion(event);
  }
}

void SettingsDialog::release(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton) scroller_.release();
  ui::Dialog::release(event);
}

void SettingsDialog::leave() {
  pointer_.reset();
  ui::Dialog::leave();
}

void SettingsDialog::wheel(const ui::MouseEvent& /*event*/, int dy) {
  scroller_.scrollBy(dy * style().scaled(kSettingsWheelStep));
  hoverAnew();
  changed();
}

/// Another row may have come below the pointer.
void SettingsDialog::hoverAnew() {
  if (pointer_) ui::Dialog::motion(*pointer_);
}

void SettingsDialog::keyboardMoved() {
  const auto row = static_cast<std::size_t>(focusedControl());
  if (row >= places_.size()) return;
  scroller_.reveal(places_[row].top, places_[row].height);
  hoverAnew();
}

std::optional<int> SettingsDialog::controlAfterKey(unsigned long keysym) const {
  switch (keysym) {
    case ui::key::kUp:
      return std::max(focusedControl() - 1, 0);
    case ui::key::kDown:
      return std::min(focusedControl() + 1, buttonControl(1));
    case ui::key::kHome:
      return 0;
    case ui::key::kEnd:
      return controlCount() - 1;
    default:
      return std::nullopt;
  }
}

bool SettingsDialog::key(const ui::KeyEvent& event) {
  const unsigned long keysym = ui::key::plain(event.keysym);
  if (const auto control = controlAfterKey(keysym)) {
    giveKeyboardTo(*control);
  } else if (keysym == ui::key::kReturn && focusedControl() < controlCount()) {
    close();
  } else {
    return ui::Dialog::key(event);
  }
  return true;
}

// Drawing.

void SettingsDialog::paintContent(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  ui::drawText(canvas, heading_, kHeading, style().heading(), palette.text);
  canvas.pushClip(scroller_.view());
  for (std::size_t row = 0; row < rows_.size(); ++row) paintRow(canvas, row);
  canvas.popClip();
  ui::drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
}

void SettingsDialog::paintRow(ui::Canvas& canvas, std::size_t row) const {
  const ui::Rect rect = rowRect(row);
  if (ui::intersect(rect, canvas.clip()).empty()) return;
  const ui::Palette& palette = style().palette();
  const RowPlace& place = places_[row];
  paintRowGround(canvas, row);
  const int line = style().lineHeight();
  const int x = rect.x + style().scaled(kRowPadding);
  const int y = rect.y + (rect.h - line - place.explanation.height()) / 2;
  ui::drawText(canvas, {x, y, explanationWidth(rect.w), line}, rows_[row].title, style().body(),
               palette.text);
  place.explanation.draw(canvas, x, y + line, palette.dimText);
  paintSwitch(canvas, switchRect(row), rows_[row].get());
}

void SettingsDialog::paintRowGround(ui::Canvas& canvas, std::size_t row) const {
  const ui::Palette& palette = style().palette();
  const auto control = static_cast<int>(row);
  const bool hovered = presses().hovered(control);
  const int radius = style().scaled(kRowRadius);
  if (focusedControl() == control && canvas.showsRings()) {
    ui::fillOutlined(canvas, rowRect(row), radius, ui::focusRingWidth(style().scale()),
                     palette.accent, hovered ? palette.raised : palette.window);
  } else if (hovered) {
    canvas.fillRoundRect(rowRect(row), radius, palette.raised);
  }
}

void SettingsDialog::paintSwitch(ui::Canvas& canvas, const ui::Rect& rect, bool on) const {
  const ui::Palette& palette = style().palette();
  const int outline = std::max(1, style().scaled(kSwitchOutline));
  ui::fillOutlined(canvas, rect, rect.h / 2, outline,
                   on ? palette.link : ui::controlOutline(palette),
                   on ? palette.link : palette.border);
  const int gap = style().scaled(kKnobGap);
  const int size = rect.h - 2 * gap;
  const int x = on ? rect.x + rect.w - gap - size : rect.x + gap;
  canvas.fillRoundRect({x, rect.y + gap, size, size}, size / 2, kKnob);
}

}  // namespace app
