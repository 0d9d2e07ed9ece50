#include "app/frame/welcome_screen.h"

#include <algorithm>

#include "app/frame/frame_layout.h"
#include "ui/keys.h"

namespace app {

WelcomeScreen::WelcomeScreen(const ui::Style& style, ui::Icon& icon)
    : Screen(style), style_(style), toolbar_(style), view_(style, icon) {
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
  const int update = std::min(updateBar().wantedHeight(), rect().h - bar.h);
  placeUpdateBar({0, bar.h, rect().w, update});
  const int above = bar.h + update;
  view_.setRect({0, above, rect().w, rect().h - above});
  view_.setTabLeaves(update > 0);
}

/// Tab comes from the line to the first or the last control at once.
bool WelcomeScreen::key(const ui::KeyEvent& event) {
  const auto command = commandFor(event);
  if (command && command->action == Action::LeaveScan) {
    if (onChooseFolder) onChooseFolder();
    return true;
  }
  const bool elsewhere = keyboardOwner() != &view_;
  const bool used = Screen::key(event);
  if (elsewhere && keyboardOwner() == &view_ && ui::key::plain(event.keysym) == ui::key::kTab) {
    view_.key(event);
  }
  keepOneRing();
  return used;
}

void WelcomeScreen::press(const ui::MouseEvent& event) {
  Screen::press(event);
  keepOneRing();
}

void WelcomeScreen::keepOneRing() {
  if (keyboardOwner() != &view_) view_.forgetControl();
}

}  // namespace app
