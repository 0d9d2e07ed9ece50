#include "app/frame/welcome_screen.h"

#include "app/frame/frame_layout.h"

namespace app {

WelcomeScreen::WelcomeScreen(const ui::Style& style, ui::Icon& icon)
    : style_(style), toolbar_(style), view_(style, icon) {
  add(toolbar_);
  add(view_);
  giveKeyboardTo(&view_);
  toolbar_.onCommand = [this](const Command& command) {
    if (onCommand) onCommand(command);
  };
  view_.onVolume = [this](const std::string& path) {
    if (onVolume) onVolume(path);
  };
  view_.onChooseFolder = [this] {
    if (onChooseFolder) onChooseFolder();
  };
}

void WelcomeScreen::layOut() {
  const ui::Rect bar = toolbarRect(rect().w, rect().h, style_.scale(), style_.lineHeight());
  toolbar_.setRect(bar);
  view_.setRect({0, bar.h, rect().w, rect().h - bar.h});
}

}  // namespace app
