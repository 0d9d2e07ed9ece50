#include "ui/widgets/dialog.h"

#include <algorithm>
#include <utility>

#include "ui/keys.h"

namespace ui {

namespace {

constexpr Colour kDim = 0x66000000;

// Logical pixels.
constexpr double kRadius = 10;
constexpr double kPadding = 16;
constexpr double kMargin = 12;  // between the panel and the window's edge
constexpr double kButtonGap = 8;
constexpr double kButtonPadding = 24;  // around a text, both sides together
constexpr double kLeastButton = 80;
constexpr double kButtonExtraHeight = 10;

}  // namespace

int Dialog::padding() const { return style_.scaled(kPadding); }

int Dialog::buttonRowHeight() const {
  return style_.lineHeight() + style_.scaled(kButtonExtraHeight) + padding();
}

void Dialog::setButtons(std::vector<DialogButton> buttons) {
  buttons_ = std::move(buttons);
  buttonRects_.resize(buttons_.size());
}

void Dialog::giveKeyboardTo(int control) {
  focusedControl_ = control;
  keyboardMoved();
  changed();
}

void Dialog::layOut() {
  const int width = rect().w;
  const int height = rect().h;
  const Rect wanted = wantedPanel(width, height);
  const int margin = style_.scaled(kMargin);
  const int w = std::clamp(wanted.w, 1, std::max(1, width - 2 * margin));
  const int h = std::clamp(wanted.h, 1, std::max(1, height - 2 * margin));
  panel_ = {(width - w) / 2, (height - h) / 2, w, h};
  layOutButtons();
  const int inner = padding();
  const int below = buttons_.empty() ? 0 : buttonRowHeight();
  layOutContent({panel_.x + inner, panel_.y + inner, std::max(0, panel_.w - 2 * inner),
                 std::max(0, panel_.h - 2 * inner - below)});
  changed();
}

void Dialog::layOutButtons() {
  const int height = style_.lineHeight() + style_.scaled(kButtonExtraHeight);
  int right = panel_.x + panel_.w - padding();
  for (std::size_t i = buttons_.size(); i-- > 0;) {
    const int width = std::max(style_.textWidth(buttons_[i].text) + style_.scaled(kButtonPadding),
                               style_.scaled(kLeastButton));
    buttonRects_[i] = {right - width, panel_.y + panel_.h - padding() - height, width, height};
    right -= width + style_.scaled(kButtonGap);
  }
}

PressTracker::Control Dialog::anyControlAt(int x, int y) const {
  for (std::size_t i = 0; i < buttonRects_.size(); ++i) {
    if (buttonRects_[i].contains(x, y)) return buttonControl(i);
  }
  return panel_.contains(x, y) ? controlAt(x, y) : std::nullopt;
}

void Dialog::press(const MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  if (!panel_.contains(event.x, event.y)) {
    pressedOutside();
    return;
  }
  if (presses_.press(anyControlAt(event.x, event.y))) changed();
}

void Dialog::motion(const MouseEvent& event) {
  if (presses_.motion(anyControlAt(event.x, event.y))) changed();
}

void Dialog::leave() {
  if (presses_.leave()) changed();
}

void Dialog::releasePointer() {
  presses_.cancel();
  presses_.leave();
  changed();
}

void Dialog::release(const MouseEvent& event) {
  if (event.button != kPrimaryButton || !presses_.holding()) return;
  const auto control = presses_.release(anyControlAt(event.x, event.y));
  changed();
  if (control) actOn(static_cast<int>(*control));
}

bool Dialog::actOn(int control) {
  if (control < controlCount()) return act(control);
  const auto button = static_cast<std::size_t>(control - controlCount());
  if (button >= buttons_.size()) return false;
  // A copy: the dialog may go while it runs.
  if (const auto action = buttons_[button].action) action();
  return true;
}

void Dialog::actOnDefault() {
  const auto found = std::ranges::find(buttons_, ButtonKind::Default, &DialogButton::kind);
  if (found == buttons_.end()) return;
  actOn(buttonControl(static_cast<std::size_t>(found - buttons_.begin())));
}

bool Dialog::key(const KeyEvent& event) {
  switch (key::plain(event.keysym)) {
    case key::kTab: {
      const int count = std::max(1, totalControls());
      giveKeyboardTo((focusedControl_ + (event.shift ? count - 1 : 1)) % count);
      break;
    }
    case key::kReturn:
      if (!actOn(focusedControl_)) actOnDefault();
      break;
    case kSpaceKey:
      actOn(focusedControl_);
      break;
    case key::kEscape:
      cancel();
      break;
    default:
      return false;
  }
  return true;
}

void Dialog::paint(Canvas& canvas) const {
  const Palette& palette = style_.palette();
  canvas.fillRect(rect(), kDim);
  canvas.fillRoundRect(panel_, style_.scaled(kRadius), palette.window);
  canvas.strokeRect(panel_, palette.border);
  canvas.pushClip(panel_);
  paintContent(canvas);
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    const int control = buttonControl(i);
    paintButton(canvas,
                {.rect = buttonRects_[i],
                 .text = buttons_[i].text,
                 .kind = buttons_[i].kind,
                 .hovered = presses_.hovered(control),
                 .pressed = presses_.pressed(control),
                 .focused = focusedControl_ == control},
                style_.body(), palette);
  }
  canvas.popClip();
}

}  // namespace ui
