#include "app/frame/update_bar.h"

#include <algorithm>

#include "app/model/update_notice.h"
#include "ui/keys.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::int64_t kDownload = 0;
constexpr std::int64_t kDismiss = 1;
constexpr char kDismissText[] = "✕";

// How much of the accent colour the ground has, so that the line is not taken for a toolbar.
constexpr double kTint = 0.14;

// Logical pixels.
constexpr double kBarPadding = 10;   // at both ends
constexpr double kPaddingAbove = 4;  // and below
constexpr double kBarGap = 8;
constexpr double kBarButtonPadding = 20;  // around a text, both sides together
constexpr double kBarButtonExtraHeight = 6;

}  // namespace

void UpdateBar::setMessage(const std::optional<std::string>& message) {
  const auto shown = message ? std::optional(shownMessage(*message)) : std::nullopt;
  if (shown == message_) return;
  if (!shown || !message_) {
    forgetPress();
    current_ = kDownload;
  }
  message_ = shown;
  changed();
}

int UpdateBar::wantedHeight() const {
  if (!message_) return 0;
  return style_.lineHeight() + style_.scaled(kBarButtonExtraHeight) +
         2 * style_.scaled(kPaddingAbove) + 1;
}

void UpdateBar::layOut() {
  const ui::Rect& bar = rect();
  const int gap = style_.scaled(kBarGap);
  const int height = style_.lineHeight() + style_.scaled(kBarButtonExtraHeight);
  const int y = bar.y + style_.scaled(kPaddingAbove);
  const int left = bar.x + style_.scaled(kBarPadding);
  int right = bar.x + bar.w - style_.scaled(kBarPadding);
  const auto takeFromRight = [&](int width) {
    const int w = std::clamp(width, 0, std::max(0, right - left));
    right -= w;
    const ui::Rect taken = {right, y, w, height};
    right -= gap;
    return taken;
  };
  dismissRect_ = takeFromRight(height);
  downloadRect_ =
      takeFromRight(style_.textWidth(kDownloadLabel) + style_.scaled(kBarButtonPadding));
  messageRect_ = {left, y, std::max(0, right - left), height};
}

// The buttons.

ui::ArrivalGuard::Places UpdateBar::buttonPlaces() const {
  if (!message_ || rect().empty()) return {};
  return {{kDownload, downloadRect_}, {kDismiss, dismissRect_}};
}

void UpdateBar::act(Control control) {
  // Copies: what they do may change the callables.
  const auto action = control == kDownload ? onDownload : onDismiss;
  if (action) action();
}

// The keys.

bool UpdateBar::key(const ui::KeyEvent& event) {
  if (!message_ || event.ctrl) return false;
  switch (ui::key::plain(event.keysym)) {
    case ui::key::kLeft:
      current_ = kDownload;
      break;
    case ui::key::kRight:
      current_ = kDismiss;
      break;
    case ui::key::kReturn:
    case ui::kSpaceKey:
      act(current_);
      return true;
    default:
      return false;
  }
  changed();
  return true;
}

// Drawing.

void UpdateBar::paint(ui::Canvas& canvas) const {
  if (!message_) return;
  const ui::Palette& palette = style_.palette();
  const ui::Rect& bar = rect();
  canvas.pushClip(bar);
  canvas.fillRect(bar, ui::mixed(palette.window, palette.accent, kTint));
  canvas.fillRect({bar.x, bar.y + bar.h - 1, bar.w, 1}, palette.border);
  ui::drawText(canvas, messageRect_, *message_, style_.body(), palette.text);
  paintControl(canvas, kDownload, downloadRect_, kDownloadLabel);
  paintControl(canvas, kDismiss, dismissRect_, kDismissText);
  canvas.popClip();
}

void UpdateBar::paintControl(ui::Canvas& canvas, Control control, const ui::Rect& rect,
                             const char* text) const {
  ui::Button shown = button(control, rect, text);
  shown.focused = focused() && current_ == control;
  ui::paintButton(canvas, shown, style_.body(), style_.palette());
}

}  // namespace app
