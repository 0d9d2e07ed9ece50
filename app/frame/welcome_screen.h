#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/frame/screen.h"
#include "app/frame/toolbar.h"
#include "app/frame/welcome_view.h"
#include "ui/icon.h"
#include "ui/widgets/pointer_router.h"
#include "ui/widgets/style.h"

namespace app {

/// The window while no scan is shown: the toolbar with its menu button, and the welcome view.
class WelcomeScreen : public Screen {
 public:
  /// The path of a volume that was pressed.
  std::function<void(const std::string&)> onVolume;
  std::function<void()> onChooseFolder;
  /// The application menu is to hang from the button at a place.
  std::function<void(const ui::Rect&)> onAppMenu;

  /// Both outlive the screen.
  WelcomeScreen(const ui::Style& style, ui::Icon& icon);

  void setCards(std::vector<VolumeCard> cards);

  void setSize(int width, int height) override;
  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override { pointers_.press(event); }
  void motion(const ui::MouseEvent& event) override { pointers_.motion(event); }
  void release(const ui::MouseEvent& event) override { pointers_.release(event); }
  void leave() override { pointers_.leave(); }
  void hide() override { pointers_.reset(); }
  void wheel(const ui::MouseEvent& /*event*/, int /*dy*/) override {}
  bool key(const ui::KeyEvent& event) override;
  ui::Rect menuButton() const override { return toolbar_.layout().menu; }
  ui::PointerShape pointer() const override { return ui::PointerShape::Arrow; }

  const WelcomeView& view() const { return view_; }

 private:
  void ifChanged(bool change) const {
    if (change) changed();
  }

  const ui::Style& style_;
  Toolbar toolbar_;
  WelcomeView view_;
  ui::PointerRouter pointers_;
  ui::PointerRouter::Index toolbarTarget_;
  ui::PointerRouter::Index viewTarget_;
};

}  // namespace app
