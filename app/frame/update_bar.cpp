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

constexpr int kPrimaryButton = 1;
constexpr unsigned long kSpace = ' ';

// How much of the accent colour the ground has, so that the line is not taken for a toolbar.
constexpr double kTint = 0.14;

// Logical pixels.
constexpr double kPadding = 10;      // at both ends
constexpr double kPaddingAbove = 4;  // and below
constexpr double kGap = 8;
constexpr double kButtonPadding = 20;  // around a text, both sides together
constexpr double kButtonExtraHeight = 6;

}  // namespace

void UpdateBar::setMessage(const std::optional<std::string>& message) {
  const auto shown = message ? std::optional(shownMessage(*message)) : std::nullopt;
  if (shown == message_) return;
  if (!shown || !message_) {
    presses_.cancel();
    presses_.leave();
    current_ = kDownload;
  }
  message_ = shown;
  changed();
}

int UpdateBar::wantedHeight() const {
  if (!message_) return 0;
  return style_.lineHeight() + style_.scaled(kButtonExtraHeight) +
         2 * style_.scaled(kPaddingAbove) + 1;
}

void UpdateBar::layOut() {
  const ui::Rect& bar = rect();
  const int gap = style_.scaled(kGap);
  const int height = style_.lineHeight() + style_.scaled(kButtonExtraHeight);
  const int y = bar.y + style_.scaled(kPaddingAbove);
  const int left = bar.x + style_.scaled(kPadding);
  int right = bar.x + bar.w - style_.scaled(kPadding);
  const auto takeFromRight = [&](int width) {
    const int w = std::clamp(width, 0, std::max(0, right - left));
    right -= w;
    const ui::Rect taken = {right, y, w, height};
    right -= gap;
    return taken;
  };
  dismissRect_ = takeFromRight(height);
  downloadRect_ = takeFromRight(style_.textWidth(kDownloadLabel) + style_.scaled(kButtonPadding));
  messageRect_ = {left, y, std::max(0, right - left), height};
}

bool UpdateBar::bringUpToDate() {
  placeControls();
  return false;
}

// The pointer.

ui::PressTracker::Control UpdateBar::controlAt(int x, int y) const {
  if (!message_) return std::nullopt;
  if (downloadRect_.contains(x, y)) return kDownload;
  if (dismissRect_.contains(x, y)) return kDismiss;
  return std::nullopt;
}

/// Message and rectangle change one after the other: only what comes of both counts.
void UpdateBar::placeControls() {
  ui::ArrivalGuard::Places places;
  if (message_ && !rect().empty()) {
    places = {{kDownload, downloadRect_}, {kDismiss, dismissRect_}};
  }
  guard_.place(places);
}

void UpdateBar::pointerSeen(int x, int y) {
  placeControls();
  guard_.pointerAt(x, y, controlAt(x, y));
}

void UpdateBar::tick(std::int64_t nowMs) {
  placeControls();
  guard_.tick(nowMs);
}

void UpdateBar::press(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  const auto control = controlAt(event.x, event.y);
  placeControls();
  const bool taken = control && guard_.takesPress(*control, event.x, event.y, event.timeMs);
  presses_.press(taken ? control : std::nullopt);
  if (taken) current_ = *control;
  changed();
}

void UpdateBar::motion(const ui::MouseEvent& event) {
  pointerSeen(event.x, event.y);
  if (presses_.motion(controlAt(event.x, event.y))) changed();
}

void UpdateBar::release(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton || !presses_.holding()) return;
  const auto control = presses_.release(controlAt(event.x, event.y));
  changed();
  if (control) act(*control);
}

void UpdateBar::leave() {
  if (presses_.leave()) changed();
}

void UpdateBar::act(std::int64_t control) {
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
    case kSpace:
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

void UpdateBar::paintControl(ui::Canvas& canvas, std::int64_t control, const ui::Rect& rect,
                             const char* text) const {
  const ui::Button button = {.rect = rect,
                             .text = text,
                             .hovered = presses_.hovered(control),
                             .pressed = presses_.pressed(control),
                             .focused = focused() && current_ == control};
  ui::paintButton(canvas, button, style_.body(), style_.palette());
}

}  // namespace app
