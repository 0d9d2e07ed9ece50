#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/frame/welcome_layout.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/icon.h"
#include "ui/input.h"
#include "ui/scroller.h"
#include "ui/widgets/button_view.h"
#include "ui/widgets/style.h"

namespace app {

/// What the window shows while there is no scan: the volumes as cards, and the way to any other
/// folder. Cards are buttons. Window thread only.
class WelcomeView : public ui::ButtonView<> {
 public:
  /// The path of a card.
  std::function<void(const std::string&)> onVolume;
  std::function<void()> onChooseFolder;

  /// Both outlive the view.
  WelcomeView(const ui::Style& style, ui::Icon& icon) : style_(style), icon_(icon) {}

  /// Shows one card a volume; those that have no room are scrolled to. What has the keyboard keeps
  /// it by its path, and a press on a card goes on while only figures change.
  void setCards(std::vector<VolumeCard> cards);
  /// The view comes in place of another one, perhaps under a press that was meant for that: nothing
  /// here takes one at once.
  void arrive();
  bool takesKeyboard() const override { return true; }
  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void releasePointer() override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  /// Tab goes round the cards and the button, or past the last one out of the view; arrows move
  /// among the cards and between them and the button, Enter and Space act. Returns whether the key
  /// was one of these.
  bool key(const ui::KeyEvent& event) override;

  /// Whether Tab goes to another view from the last control, and backwards from the first.
  void setTabLeaves(bool leaves) { tabLeaves_ = leaves; }
  /// No card and no button has the keyboard any more.
  void forgetControl();

  const WelcomeLayout& layout() const { return layout_; }
  /// Where a card is by now, perhaps out of the view of the cards.
  ui::Rect cardRect(int number) const { return shown(placesOf(number).card); }
  const ui::Scroller& scroller() const { return scroller_; }
  /// The number of the card that has the keyboard, that of all cards for the button.
  std::optional<int> focusedControl() const { return focusedControl_; }

 protected:
  void layOut() override;
  Places buttonPlaces() const override;
  void act(Control control) override;

 private:
  void layOutCards();
  void numberCards();
  Control controlOf(int number) const;
  int cardCount() const { return static_cast<int>(layout_.cards.size()); }
  // Cards are counted as they are shown, for the keyboard; the number that a card has for the
  // pointer is its path's for good.

  /// The button's number, after the cards'.
  int buttonControl() const { return cardCount(); }
  const CardPlaces& placesOf(int number) const {
    return layout_.cards[static_cast<std::size_t>(number)];
  }
  /// A place of the layout, scrolled.
  ui::Rect shown(const ui::Rect& place) const;
  void revealFocus();
  void focusCard(const std::string& path);
  /// False at the end of the round, where Tab leaves.
  bool cycleFocus(bool backwards);
  void moveFocus(unsigned long keysym);
  void moveFocusDown();
  void moveFocusUp();
  void paintHeading(ui::Canvas& canvas) const;
  void paintCards(ui::Canvas& canvas) const;
  void paintCard(ui::Canvas& canvas, int number) const;
  void paintBar(ui::Canvas& canvas, const VolumeCard& card, const ui::Rect& track) const;
  void paintChooseButton(ui::Canvas& canvas) const;

  const ui::Style& style_;
  ui::Icon& icon_;
  std::vector<VolumeCard> cards_;
  WelcomeLayout layout_;
  /// Of the cards.
  ui::Scroller scroller_;
  /// By path, for the pointer; of all cards that there ever were.
  std::map<std::string, Control> numbers_;
  std::optional<int> focusedControl_;
  bool tabLeaves_ = false;
};

}  // namespace app
