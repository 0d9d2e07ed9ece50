#include "app/dialogs/about_dialog.h"

#include <algorithm>
#include <utility>

#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::size_t kMostMessageLines = 4;

// Logical pixels.
constexpr double kPanelWidth = 460;
constexpr double kFrame = 2 * 12;  // margin of the panel, both sides
constexpr double kHeadingGap = 8;
constexpr double kGap = 12;
constexpr double kRingPadding = 3;  // between a link and its ring
constexpr double kRingRadius = 4;
constexpr double kBarGap = 4;
constexpr double kWheelStep = 48;

ui::Rect grown(const ui::Rect& rect, int by) {
  return {rect.x - by, rect.y - by, rect.w + 2 * by, rect.h + 2 * by};
}

}  // namespace

AboutDialog::AboutDialog(ui::Connection& connection, const ui::Style& style,
                         std::optional<UpdateNotice> update)
    : ui::Dialog(style), connection_(connection), contents_(aboutContents(std::move(update))) {
  setButtons({{contents_.closeLabel, ui::ButtonKind::Default, [this] { close(); }}});
  places_ = placesIn(style.scaled(kPanelWidth));
  findLinks();
  giveKeyboardTo(buttonControl(0));
}

void AboutDialog::setUpdate(std::optional<UpdateNotice> update) {
  if (update == contents_.update) return;
  const int beforeButton = buttonControl(0) - focusedControl();
  // The links get other numbers: a press would go on with another one.
  ui::Dialog::releasePointer();
  contents_.update = std::move(update);
  layOut();
  giveKeyboardTo(std::max(0, buttonControl(0) - beforeButton));
  hoverAnew();
}

// Places.

std::vector<std::string> AboutDialog::messageLinesIn(int width) const {
  const std::string text = shownMessage(contents_.update->message);
  std::vector<std::string> lines = ui::Paragraph(connection_, text, style().body(), width).lines();
  if (lines.size() > kMostMessageLines) {
    // Too wide with what follows, so it is drawn with an ellipsis.
    lines[kMostMessageLines - 1] += ' ' + lines[kMostMessageLines];
    lines.resize(kMostMessageLines);
  }
  return lines;
}

AboutDialog::Places AboutDialog::placesIn(int width) const {
  Places places;
  const int gap = style().scaled(kGap);
  places.heading = {0, 0, width, style().heading().height};
  places.description = ui::Paragraph(connection_, contents_.description, style().body(), width);
  places.descriptionTop = places.heading.h + style().scaled(kHeadingGap);
  int y = places.descriptionTop + places.description.height() + gap;
  places.version = {0, y, width, style().lineHeight()};
  y += places.version.h + gap;
  if (contents_.update) placeUpdate(width, &y, &places);
  placeMaker(width, &y, &places);
  places.height = y + style().scaled(kRingPadding);
  return places;
}

void AboutDialog::placeUpdate(int width, int* y, Places* places) const {
  const int line = style().lineHeight();
  places->message = messageLinesIn(width);
  places->messageRect = {0, *y, width, static_cast<int>(places->message.size()) * line};
  *y += places->messageRect.h;
  if (!contents_.update->downloadAddress.empty()) {
    *y += style().scaled(kRingPadding);
    const int own = style().textWidth(kDownloadLabel);
    places->pieces.push_back(
        {{kDownloadLabel, contents_.update->downloadAddress}, {0, *y, std::min(own, width), line}});
    *y += line;
  }
  *y += style().scaled(kGap);
}

/// A part that does not fit beside the others begins another line.
void AboutDialog::placeMaker(int width, int* y, Places* places) const {
  const int line = style().lineHeight();
  int x = 0;
  for (const LinkedText& part : contents_.maker) {
    const int own = style().textWidth(part.text);
    if (x > 0 && x + own > width) {
      x = 0;
      *y += line + 2 * style().scaled(kRingPadding);
    }
    places->pieces.push_back({part, {x, *y, std::min(own, width), line}});
    x += own;
  }
  *y += line;
}

ui::Rect AboutDialog::wantedPanel(int width, int /*height*/) const {
  const int w = std::min(style().scaled(kPanelWidth), width - style().scaled(kFrame));
  const int content = placesIn(std::max(1, w - 2 * padding())).height;
  return {0, 0, w, content + buttonRowHeight() + 2 * padding()};
}

void AboutDialog::layOutContent(const ui::Rect& content) {
  places_ = placesIn(std::max(1, content.w));
  if (places_.height > content.h) {
    const int bar = ui::Scroller::kBarWidth + style().scaled(kBarGap);
    places_ = placesIn(std::max(1, content.w - bar));
  }
  findLinks();
  scroller_.setView(content);
  scroller_.setContentHeight(places_.height);
  keyboardMoved();
}

void AboutDialog::findLinks() {
  links_.clear();
  for (std::size_t i = 0; i < places_.pieces.size(); ++i) {
    if (!places_.pieces[i].text.address.empty()) links_.push_back(i);
  }
}

const LinkedText& AboutDialog::link(std::size_t number) const {
  return places_.pieces[links_[number]].text;
}

ui::Rect AboutDialog::shownRect(const ui::Rect& place) const {
  const ui::Rect& view = scroller_.view();
  return {view.x + place.x, view.y + place.y - scroller_.offset(), place.w, place.h};
}

ui::Rect AboutDialog::linkRect(std::size_t number) const {
  return shownRect(places_.pieces[links_[number]].rect);
}

ui::PressTracker::Control AboutDialog::controlAt(int x, int y) const {
  if (!scroller_.view().contains(x, y)) return std::nullopt;
  for (std::size_t i = 0; i < links_.size(); ++i) {
    if (linkRect(i).contains(x, y)) return static_cast<std::int64_t>(i);
  }
  return std::nullopt;
}

// What the user does.

bool AboutDialog::act(int control) {
  const std::string address = link(static_cast<std::size_t>(control)).address;
  giveKeyboardTo(control);
  // A copy: the dialog may go while it runs.
  if (const auto told = onLink) told(address);
  return true;
}

void AboutDialog::placeControls() {
  ui::ArrivalGuard::Places places;
  for (std::size_t i = 0; i < links_.size(); ++i) {
    places.emplace_back(guardNumber(static_cast<std::int64_t>(i)),
                        ui::intersect(linkRect(i), scroller_.view()));
  }
  guard_.place(places);
}

bool AboutDialog::bringUpToDate() {
  placeControls();
  return false;
}

void AboutDialog::tick(std::int64_t nowMs) {
  placeControls();
  guard_.tick(nowMs);
}

void AboutDialog::press(const ui::MouseEvent& event) {
  pointer_ = event;
  if (event.button != ui::kPrimaryButton) return;
  if (scroller_.press(event.x, event.y)) {
    changed();
    return;
  }
  placeControls();
  const auto link = controlAt(event.x, event.y);
  if (link && !guard_.takesPress(guardNumber(*link), event.x, event.y, event.timeMs)) return;
  ui::Dialog::press(event);
}

void AboutDialog::motion(const ui::MouseEvent& event) {
  pointer_ = event;
  if (scroller_.drag(event.y)) {
    changed();
    return;
  }
  placeControls();
  guard_.pointerAt(event.x, event.y);
  ui::Dialog::motion(event);
}

void AboutDialog::release(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton) scroller_.release();
  ui::Dialog::release(event);
}

void AboutDialog::leave() {
  pointer_.reset();
  ui::Dialog::leave();
}

void AboutDialog::releasePointer() {
  pointer_.reset();
  scroller_.release();
  guard_.forgetPointer();
  ui::Dialog::releasePointer();
}

void AboutDialog::wheel(const ui::MouseEvent& /*event*/, int dy) {
  scroll(dy * style().scaled(kWheelStep));
}

void AboutDialog::scroll(int distance) {
  scroller_.scrollBy(distance);
  hoverAnew();
  changed();
}

/// Another link may have come below the pointer.
void AboutDialog::hoverAnew() {
  if (pointer_) ui::Dialog::motion(*pointer_);
}

void AboutDialog::keyboardMoved() {
  const auto number = static_cast<std::size_t>(focusedControl());
  if (number >= links_.size()) return;
  const ui::Rect& place = places_.pieces[links_[number]].rect;
  const int around = style().scaled(kRingPadding);
  scroller_.reveal(place.y - around, place.h + 2 * around);
  hoverAnew();
}

std::optional<int> AboutDialog::distanceOf(unsigned long keysym) const {
  switch (keysym) {
    case ui::key::kUp:
      return -style().lineHeight();
    case ui::key::kDown:
      return style().lineHeight();
    case ui::key::kPageUp:
      return -scroller_.view().h;
    case ui::key::kPageDown:
      return scroller_.view().h;
    case ui::key::kHome:
      return -scroller_.contentHeight();
    case ui::key::kEnd:
      return scroller_.contentHeight();
    default:
      return std::nullopt;
  }
}

bool AboutDialog::key(const ui::KeyEvent& event) {
  const auto distance = distanceOf(ui::key::plain(event.keysym));
  if (!distance) return ui::Dialog::key(event);
  scroll(*distance);
  return true;
}

ui::PointerShape AboutDialog::pointer() const {
  for (int link = 0; link < controlCount(); ++link) {
    if (presses().hovered(link)) return ui::PointerShape::Hand;
  }
  return ui::PointerShape::Arrow;
}

// Drawing.

void AboutDialog::paintContent(ui::Canvas& canvas) const {
  // Rings stand out a little at the sides.
  const ui::Rect& view = scroller_.view();
  const int around = style().scaled(kRingPadding);
  canvas.pushClip({view.x - around, view.y, view.w + 2 * around, view.h});
  paintTexts(canvas);
  for (std::size_t i = 0; i < links_.size(); ++i) paintLink(canvas, i);
  canvas.popClip();
  ui::drawScrollBar(canvas, scroller_, style().palette().raised, style().palette().dimText);
}

void AboutDialog::paintTexts(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  ui::drawText(canvas, shownRect(places_.heading), contents_.heading, style().heading(),
               palette.text);
  const ui::Rect origin = shownRect({});
  places_.description.draw(canvas, origin.x, origin.y + places_.descriptionTop, palette.text);
  ui::drawText(canvas, shownRect(places_.version), contents_.version, style().body(),
               palette.dimText);
  ui::Rect line = shownRect(places_.messageRect);
  line.h = style().lineHeight();
  for (const std::string& text : places_.message) {
    ui::drawText(canvas, line, text, style().body(), palette.text);
    line.y += line.h;
  }
  for (const Piece& piece : places_.pieces) {
    if (!piece.text.address.empty()) continue;
    ui::drawText(canvas, shownRect(piece.rect), piece.text.text, style().body(), palette.dimText);
  }
}

void AboutDialog::paintLink(ui::Canvas& canvas, std::size_t number) const {
  const ui::Palette& palette = style().palette();
  const auto control = static_cast<int>(number);
  const ui::Rect rect = linkRect(number);
  if (focusedControl() == control && canvas.showsRings()) {
    ui::fillOutlined(canvas, grown(rect, style().scaled(kRingPadding)), style().scaled(kRingRadius),
                     ui::focusRingWidth(style().scale()), palette.accent, palette.window);
  }
  const ui::Font& font = style().body();
  ui::drawText(canvas, rect, link(number).text, font, palette.link);
  if (!presses().hovered(control)) return;
  const int baseline = rect.y + (rect.h - font.height) / 2 + font.ascent;
  const int thickness = std::max(1, style().scaled(1));
  canvas.fillRect({rect.x, baseline + thickness, rect.w, thickness}, palette.link);
}

}  // namespace app
