#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/frame/screen.h"
#include "app/frame/toolbar.h"
#include "app/frame/welcome_view.h"
#include "ui/icon.h"
#include "ui/widgets/style.h"

namespace app {

/// The window while no scan is shown: the toolbar with its menu button, and the welcome view.
class WelcomeScreen : public Screen {
 public:
  std::function<void(const Command&)> onCommand;
  /// The path of a volume that was pressed.
  std::function<void(const std::string&)> onVolume;
  std::function<void()> onChooseFolder;

  /// Both outlive the screen.
  WelcomeScreen(const ui::Style& style, ui::Icon& icon);

  /// Is about to be shown in place of a scan.
  void arrive() { view_.arrive(); }

  void setCards(std::vector<VolumeCard> cards) { view_.setCards(std::move(cards)); }

  ui::Rect menuButton() const override {
    return toolbar_.layout().place(Action::OpenApplicationMenu);
  }

  const WelcomeView& view() const { return view_; }

  void press(const ui::MouseEvent& event) override;
  /// The key that leaves a scan chooses a folder here.
  bool key(const ui::KeyEvent& event) override;

 protected:
  void layOut() override;
  ui::View& mainView() override { return view_; }

 private:
  void keepOneRing();

  const ui::Style& style_;
  Toolbar toolbar_;
  WelcomeView view_;
};

}  // namespace app
