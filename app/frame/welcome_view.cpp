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

constexpr std::int64_t kChooseButton = 0;

bool samePaths(const std::vector<VolumeCard>& a, const std::vector<VolumeCard>& b) {
  return std::ranges::equal(a, b, {}, &VolumeCard::path, &VolumeCard::path);
}

}  // namespace

void WelcomeView::layOut() {
  const bool onButton = focusedControl_ == buttonControl();
  layOutCards();
  // A view without any width has no cards, which counts the button anew.
  forgetPress();
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
  if (!samePaths(cards_, cards)) forgetPress();
  cards_ = std::move(cards);
  const bool first = numbers_.empty();
  numberCards();
  layOutCards();
  // The window opens: what it has takes nobody's place.
  if (first) settleButtons();
  if (onButton) focusedControl_ = buttonControl();
  if (onCard) focusCard(path);
  changed();
}

void WelcomeView::arrive() {
  if (!numbers_.empty()) unsettleButtons();
}

void WelcomeView::numberCards() {
  for (const VolumeCard& card : cards_) {
    numbers_.try_emplace(card.path, kChooseButton + 1 + static_cast<Control>(numbers_.size()));
  }
}

ui::ArrivalGuard::Control WelcomeView::controlOf(int number) const {
  if (number == buttonControl()) return kChooseButton;
  return numbers_.at(cards_[static_cast<std::size_t>(number)].path);
}

ui::ArrivalGuard::Places WelcomeView::buttonPlaces() const {
  Places places = {{kChooseButton, layout_.button}};
  for (int i = 0; i < cardCount(); ++i) {
    const ui::Rect seen = ui::intersect(cardRect(i), scroller_.view());
    if (!seen.empty()) places.emplace_back(controlOf(i), seen);
  }
  return places;
}

void WelcomeView::layOutCards() {
  layout_ = layOutWelcome({.view = rect(),
                           .scale = style_.scale(),
                           .lineHeight = style_.lineHeight(),
                           .headingHeight = style_.heading().height,
                           .headingTextWidth = style_.textWidth(kWelcomeHeading, style_.heading()),
                           .noteTextWidth = style_.textWidth(kWelcomeNote),
                           .buttonTextWidth = style_.textWidth(kChooseFolderText),
                           .hintTextWidth = style_.textWidth(kCommandLineHint),
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
}

void WelcomeView::focusCard(const std::string& path) {
  const auto end = cards_.begin() + cardCount();
  const auto found = std::ranges::find(cards_.begin(), end, path, &VolumeCard::path);
  focusedControl_.reset();
  if (found != end) focusedControl_ = static_cast<int>(found - cards_.begin());
}

void WelcomeView::press(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton || !scroller_.press(event.x, event.y)) {
    return ui::ButtonView<>::press(event);
  }
  ui::ButtonView<>::leave();  // the cards pass by below
  changed();
}

void WelcomeView::motion(const ui::MouseEvent& event) {
  if (scroller_.drag(event.y)) return changed();
  ui::ButtonView<>::motion(event);
}

void WelcomeView::release(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton) scroller_.release();
  ui::ButtonView<>::release(event);
}

void WelcomeView::releasePointer() {
  scroller_.release();
  leave();
}

/// A row at a time: the cards are high.
void WelcomeView::wheel(const ui::MouseEvent& /*event*/, int dy) {
  if (!scroller_.hasBar()) return;
  scroller_.scrollBy(dy * layout_.rowStep);
  settleButtons();  // the hand that presses has brought them here
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
      if (focusedControl_) act(controlOf(*focusedControl_));
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

void WelcomeView::act(Control control) {
  if (control == kChooseButton) {
    if (onChooseFolder) onChooseFolder();
    return;
  }
  const auto found = std::ranges::find(
      cards_, control, [this](const VolumeCard& card) { return numbers_.at(card.path); });
  if (found == cards_.end() || !onVolume) return;
  // A copy: what is called may set other cards.
  const std::string path = found->path;
  onVolume(path);
}

void WelcomeView::paint(ui::Canvas& canvas) const {
  canvas.pushClip(rect());
  canvas.fillRect(rect(), style_.palette().view);
  paintHeading(canvas);
  paintCards(canvas);
  paintChooseButton(canvas);
  ui::drawText(canvas, layout_.hint, kCommandLineHint, style_.body(), style_.palette().dimText);
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
  const bool ringed = focusedControl_ == number && canvas.showsRings();
  const ui::Colour fill = hovered(controlOf(number)) ? palette.pressed : palette.raised;
  ui::fillOutlined(canvas, cardRect(number), kCardRadius,
                   ringed ? ui::focusRingWidth(style_.scale()) : 1,
                   ringed ? palette.accent : palette.border, fill);
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
  ui::Button shown = button(kChooseButton, layout_.button, std::string(kChooseFolderText));
  shown.focused = focusedControl_ == buttonControl();
  ui::paintButton(canvas, shown, style_.body(), style_.palette());
}

}  // namespace app
