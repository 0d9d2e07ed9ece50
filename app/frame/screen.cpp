#include "app/frame/screen.h"

namespace app {

Screen::Screen(const ui::Style& style) : updateBar_(style) {
  add(updateBar_);
  updateBar_.onDownload = [this] {
    if (onDownload) onDownload();
  };
  updateBar_.onDismiss = [this] {
    if (onDismissUpdate) onDismissUpdate();
  };
}

void Screen::setUpdate(const std::optional<std::string>& message) {
  const int before = updateBar_.wantedHeight();
  updateBar_.setMessage(message);
  const int height = updateBar_.wantedHeight();
  if (height == 0 && keyboardOwner() == &updateBar_) giveKeyboardTo(&mainView());
  if (height == before) return;
  layOut();
  changed();
}

}  // namespace app
