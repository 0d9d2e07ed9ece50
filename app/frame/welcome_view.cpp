#include "app/frame/welcome_view.h"

#include <algorithm>
#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"

namespace app {

namespace {

// Device pixels at every scale.
constexpr int kCardRadius = 8;
constexpr int kTrackRadius = 3;
constexpr int kTrackOutline = 1;

bool samePaths(const std::vector<VolumeCard>& a, const std::vector<VolumeCard>& b) {
  return std::ranges::equal(a, b, {}, &VolumeCard::path, &VolumeCard::path);
}

}  // namespace

void WelcomeView::layOut() {
  const bool onButton = focusedControl_ == buttonControl();
  layOutCards();
  // A view without any width has no cards, which numbers the button anew.
  presses_ = {};
  if (onButton || (focusedControl_ && *focusedControl_ > cardCount())) {
    focusedControl_ = buttonControl();
  }
  revealFocus();
}

void WelcomeView::setCards(std::vector<VolumeCard> cards) {
  if (cards_ == cards) return;
  const bool onButton = focusedControl_ == buttonControl();
  const bool onCard = focusedControl_ && !onButton;
  const std::string path = onCard ? cards_[static_cast<std::size_t>(*focusedControl_)].path : "";
  if (!samePaths(cards_, cards)) presses_ = {};
  cards_ = std::move(cards);
  layOutCards();
  if (onButton) focusedControl_ = buttonControl();
  if (onCard) focusCard(path);
  changed();
}

void WelcomeView::layOutCards() {
  layout_ = layOutWelcome({.view = rect(),
                           .scale = style_.scale(),
                           .lineHeight = style_.lineHeight(),
                           .headingHeight = style_.heading().height,
                           .buttonTextWidth = style_.textWidth(kChooseFolderText),
                           .cards = cards_.size()});
  scroller_.setView(layout_.cardsView);
  scroller_.setContentHeight(layout_.cardsHeight);
}

ui::Rect WelcomeView::shown(const ui::Rect& place) const {
  return {place.x, place.y - scroller_.offset(), place.w, place.h};
}

void WelcomeView::revealFocus() {
  if (!focusedControl_ || focusedControl_ == buttonControl()) return;
  const ui::Rect& card = placesOf(*focusedControl_).card;
  scroller_.reveal(card.y - scroller_.view().y, card.h);
  hoverAgain();
}

/// Another card may have come under the pointer.
void WelcomeView::hoverAgain() {
  if (pointer_) presses_.motion(controlAt(pointer_->x, pointer_->y));
}

void WelcomeView::focusCard(const std::string& path) {
  const auto end = cards_.begin() + cardCount();
  const auto found = std::ranges::find(cards_.begin(), end, path, &VolumeCard::path);
  focusedControl_.reset();
  if (found != end) focusedControl_ = static_cast<int>(found - cards_.begin());
}

ui::PressTracker::Control WelcomeView::controlAt(int x, int y) const {
  if (layout_.button.contains(x, y)) return buttonControl();
  if (!scroller_.view().contains(x, y)) return std::nullopt;
  for (int i = 0; i < cardCount(); ++i) {
    if (cardRect(i).contains(x, y)) return i;
  }
  return std::nullopt;
}

void WelcomeView::press(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton) return;
  pointer_ = event;
  if (scroller_.press(event.x, event.y)) return changed();
  if (presses_.press(controlAt(event.x, event.y))) changed();
}

void WelcomeView::motion(const ui::MouseEvent& event) {
  pointer_ = event;
  if (scroller_.drag(event.y)) return changed();
  if (presses_.motion(controlAt(event.x, event.y))) changed();
}

void WelcomeView::release(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton) scroller_.release();
  if (event.button != ui::kPrimaryButton || !presses_.holding()) return;
  const auto control = presses_.release(controlAt(event.x, event.y));
  changed();
  if (control) act(*control);
}

void WelcomeView::leave() {
  pointer_.reset();
  if (presses_.leave()) changed();
}

void WelcomeView::releasePointer() {
  scroller_.release();
  leave();
}

/// A row at a time: the cards are high.
void WelcomeView::wheel(const ui::MouseEvent& event, int dy) {
  if (!scroller_.hasBar()) return;
  pointer_ = event;
  scroller_.scrollBy(dy * layout_.rowStep);
  hoverAgain();
  changed();
}

bool WelcomeView::key(const ui::KeyEvent& event) {
  if (event.ctrl) return false;
  switch (const ui::key::Keysym keysym = ui::key::plain(event.keysym)) {
    case ui::key::kTab:
      if (!cycleFocus(event.shift)) return false;
      revealFocus();
      changed();
      return true;
    case ui::key::kLeft:
    case ui::key::kRight:
    case ui::key::kUp:
    case ui::key::kDown:
      moveFocus(keysym);
      revealFocus();
      changed();
      return true;
    case ui::key::kReturn:
    case ui::kSpaceKey:
      if (focusedControl_) act(*focusedControl_);
      return focusedControl_.has_value();
    default:
      return false;
  }
}

void WelcomeView::forgetControl() {
  if (!focusedControl_) return;
  focusedControl_.reset();
  changed();
}

bool WelcomeView::cycleFocus(bool backwards) {
  const int controls = cardCount() + 1;
  if (tabLeaves_ && focusedControl_ == (backwards ? 0 : buttonControl())) return false;
  const int before = focusedControl_.value_or(backwards ? 0 : -1);
  focusedControl_ = (before + (backwards ? controls - 1 : 1)) % controls;
  return true;
}

void WelcomeView::moveFocus(unsigned long keysym) {
  if (!focusedControl_) {
    focusedControl_ = 0;
    return;
  }
  if (keysym == ui::key::kDown) return moveFocusDown();
  if (keysym == ui::key::kUp) return moveFocusUp();
  if (focusedControl_ == buttonControl()) return;
  const int moved = *focusedControl_ + (keysym == ui::key::kRight ? 1 : -1);
  focusedControl_ = std::clamp(moved, 0, cardCount() - 1);
}

void WelcomeView::moveFocusDown() {
  const int below = *focusedControl_ + layout_.columns;
  if (below < cardCount()) {
    focusedControl_ = below;
    return;
  }
  // A last row that does not reach this far still lies below.
  const bool inLastRow = focusedControl_ == buttonControl() ||
                         *focusedControl_ / layout_.columns == (cardCount() - 1) / layout_.columns;
  focusedControl_ = inLastRow ? buttonControl() : cardCount() - 1;
}

void WelcomeView::moveFocusUp() {
  if (cardCount() == 0) return;
  if (focusedControl_ == buttonControl()) {
    focusedControl_ =
        (cardCount() - 1) / layout_.columns * layout_.columns;  // just above the button
  } else if (*focusedControl_ >= layout_.columns) {
    *focusedControl_ -= layout_.columns;
  }
}

void WelcomeView::act(std::int64_t control) {
  if (control == buttonControl()) {
    if (onChooseFolder) onChooseFolder();
  } else if (onVolume) {
    // A copy: what is called may set other cards.
    const std::string path = cards_[static_cast<std::size_t>(control)].path;
    onVolume(path);
  }
}

void WelcomeView::paint(ui::Canvas& canvas) const {
  canvas.pushClip(rect());
  canvas.fillRect(rect(), style_.palette().view);
  paintHeading(canvas);
  paintCards(canvas);
  paintChooseButton(canvas);
  canvas.popClip();
}

void WelcomeView::paintHeading(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  const ui::Rect& icon = layout_.icon;
  icon_.draw(canvas, icon.x, icon.y, icon.w, palette.view);
  ui::drawText(canvas, layout_.heading, kWelcomeHeading, style_.heading(), palette.text);
  ui::drawText(canvas, layout_.note, kWelcomeNote, style_.body(), palette.dimText);
}

void WelcomeView::paintCards(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.pushClip(scroller_.view());
  for (int i = 0; i < cardCount(); ++i) {
    if (!ui::intersect(cardRect(i), scroller_.view()).empty()) paintCard(canvas, i);
  }
  ui::drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
  canvas.popClip();
}

void WelcomeView::paintCard(ui::Canvas& canvas, int number) const {
  const CardPlaces& places = placesOf(number);
  const VolumeCard& card = cards_[static_cast<std::size_t>(number)];
  const ui::Palette& palette = style_.palette();
  const bool focused = focusedControl_ == number;
  const ui::Colour fill = presses_.hovered(number) ? palette.pressed : palette.raised;
  ui::fillOutlined(canvas, cardRect(number), kCardRadius,
                   focused ? ui::focusRingWidth(style_.scale()) : 1,
                   focused ? palette.accent : palette.border, fill);
  ui::drawText(canvas, shown(places.name), displayName(card.name), style_.body(), palette.text);
  ui::drawText(canvas, shown(places.figures), figuresText(card), style_.body(), palette.dimText);
  paintBar(canvas, card, shown(places.track));
}

void WelcomeView::paintBar(ui::Canvas& canvas, const VolumeCard& card,
                           const ui::Rect& track) const {
  const auto bar = usageBar(card, track.w);
  if (!bar) return;
  const ui::Palette& palette = style_.palette();
  const ui::Rect around = {track.x - kTrackOutline, track.y - kTrackOutline,
                           track.w + 2 * kTrackOutline, track.h + 2 * kTrackOutline};
  ui::fillOutlined(canvas, around, kTrackRadius + kTrackOutline, kTrackOutline,
                   ui::controlOutline(palette), trackColour(palette.dark));
  canvas.fillRoundRect({track.x, track.y, bar->fillWidth, track.h}, kTrackRadius,
                       bar->nearlyFull ? kNearlyFullColour : palette.accent);
}

void WelcomeView::paintChooseButton(ui::Canvas& canvas) const {
  const int number = buttonControl();
  const ui::Button button = {.rect = layout_.button,
                             .text = std::string(kChooseFolderText),
                             .hovered = presses_.hovered(number),
                             .pressed = presses_.pressed(number),
                             .focused = focusedControl_ == number};
  ui::paintButton(canvas, button, style_.body(), style_.palette());
}

}  // namespace app
