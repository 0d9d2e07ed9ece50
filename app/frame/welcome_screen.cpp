#include "app/frame/welcome_screen.h"

#include <utility>

#include "app/frame/frame_layout.h"

namespace app {

WelcomeScreen::WelcomeScreen(const ui::Style& style, ui::Icon& icon)
    : style_(style), toolbar_(style), view_(style, icon) {
  toolbar_.onAppMenu = [this](const ui::Rect& place) {
    if (onAppMenu) onAppMenu(place);
  };
  view_.onVolume = [this](const std::string& path) {
    if (onVolume) onVolume(path);
  };
  view_.onChooseFolder = [this] {
    if (onChooseFolder) onChooseFolder();
  };
  toolbarTarget_ =
      pointers_.add({.press = [this](const auto& e) { ifChanged(toolbar_.press(e)); },
                     .motion = [this](const auto& e) { ifChanged(toolbar_.motion(e)); },
                     .release = [this](const auto& e) { ifChanged(toolbar_.release(e)); },
                     .leave = [this] { ifChanged(toolbar_.leave()); },
                     .wheel = {}});
  viewTarget_ = pointers_.add({.press = [this](const auto& e) { ifChanged(view_.press(e)); },
                               .motion = [this](const auto& e) { ifChanged(view_.motion(e)); },
                               .release = [this](const auto& e) { ifChanged(view_.release(e)); },
                               .leave = [this] { ifChanged(view_.leave()); },
                               .wheel = {}});
}

void WelcomeScreen::setCards(std::vector<VolumeCard> cards) {
  ifChanged(view_.setCards(std::move(cards)));
}

void WelcomeScreen::setSize(int width, int height) {
  const ui::Rect bar = toolbarRect(width, height, style_.scale(), style_.lineHeight());
  const ui::Rect rest = {0, bar.h, width, height - bar.h};
  toolbar_.setRect(bar);
  toolbar_.update({});
  view_.setRect(rest);
  pointers_.setRect(toolbarTarget_, bar);
  pointers_.setRect(viewTarget_, rest);
  changed();
}

void WelcomeScreen::paint(ui::Canvas& canvas) const {
  toolbar_.paint(canvas);
  view_.paint(canvas);
}

bool WelcomeScreen::key(const ui::KeyEvent& event) {
  if (!view_.key(event)) return false;
  changed();
  return true;
}

}  // namespace app
