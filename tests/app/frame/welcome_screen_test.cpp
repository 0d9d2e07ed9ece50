// The welcome as the whole window.

#include "app/frame/welcome_screen.h"

#include <string>
#include <utility>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using Told = std::vector<std::string>;

constexpr int kWelcomeWidth = 900;
constexpr int kWelcomeHeight = 600;

class WelcomeScreenTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  WelcomeScreenTest() {
    screen_.onChanged = [this] { ++changes_; };
    screen_.onVolume = [this](const std::string& path) { told_.push_back(path); };
    screen_.onChooseFolder = [this] { told_.emplace_back("choose"); };
    screen_.onCommand = [this](const Command& command) { commands_.push_back(command); };
    screen_.setRect({0, 0, kWelcomeWidth, kWelcomeHeight});
    screen_.setCards({card("/a"), card("/b")});
    changes_ = 0;
  }

  static VolumeCard card(const std::string& path, std::int64_t used = 10) {
    return {"Volume " + path, path, VolumeFigures{used, 100}};
  }
  const ui::Rect& cardRect(std::size_t number) const {
    return screen_.view().layout().cards.at(number).card;
  }
  const ui::Rect& button() const { return screen_.view().layout().button; }
  /// The menu button, whose place only a press tells.
  ui::MouseEvent onMenu() const { return {.x = kWelcomeWidth - 15, .y = 15, .button = 1}; }
  void click(const ui::MouseEvent& event) {
    screen_.press(event);
    screen_.release(event);
  }
  bool key(unsigned long keysym) { return screen_.key({.keysym = keysym, .text = {}}); }
  Told taken() { return std::exchange(told_, {}); }
  int takenChanges() { return std::exchange(changes_, 0); }
  test::Picture picture() {
    return ViewsOnWindow::picture(kWelcomeWidth, kWelcomeHeight,
                                  [&](ui::Canvas& c) { screen_.paint(c); });
  }

  ui::Icon icon_;
  WelcomeScreen screen_{style, icon_};
  int changes_ = 0;
  Told told_;
  std::vector<Command> commands_;
};

TEST_F(WelcomeScreenTest, CoversTheWindow) {
  EXPECT_EQ(picture().count(test::rgb(test::kNothingDrawn)), 0);
  screen_.setRect({0, 0, 640, 420});
  EXPECT_EQ(ViewsOnWindow::picture(640, 420, [&](ui::Canvas& c) { screen_.paint(c); })
                .count(test::rgb(test::kNothingDrawn)),
            0);
}

TEST_F(WelcomeScreenTest, KeepsItsCardsInsideANarrowWindow) {
  screen_.setRect({0, 0, 300, 420});
  EXPECT_GT(takenChanges(), 0);
  EXPECT_LE(cardRect(0).x + cardRect(0).w, 300);
}

TEST_F(WelcomeScreenTest, TellsThePressedVolumeAndTheButton) {
  click(at(cardRect(1)));
  click(at(button()));
  EXPECT_EQ(taken(), (Told{"/b", "choose"}));
  EXPECT_GT(takenChanges(), 0);
}

TEST_F(WelcomeScreenTest, OpensItsMenuUnderTheButton) {
  screen_.motion(at(cardRect(0), 0));
  screen_.motion(onMenu());
  click(onMenu());
  EXPECT_EQ(commands_, std::vector<Command>{{.action = Action::OpenApplicationMenu}});
  EXPECT_TRUE(screen_.menuButton().contains(onMenu().x, onMenu().y));
}

TEST_F(WelcomeScreenTest, AsksForAFrameWhenThePointerComesOntoACardAndWhenItGoes) {
  screen_.motion(at(cardRect(0)));
  EXPECT_EQ(takenChanges(), 1);
  screen_.motion(at(cardRect(0)));
  EXPECT_EQ(takenChanges(), 0) << "nothing looks different";
  screen_.motion(onMenu());
  EXPECT_EQ(takenChanges(), 2) << "off the card, and onto the button of the toolbar";
  screen_.leave();
  EXPECT_EQ(takenChanges(), 1);
}

TEST_F(WelcomeScreenTest, AsksForAFrameOnlyForOtherCards) {
  screen_.setCards({card("/a"), card("/b")});
  EXPECT_EQ(takenChanges(), 0);
  screen_.setCards({card("/a", 11), card("/b")});
  EXPECT_EQ(takenChanges(), 1);
}

TEST_F(WelcomeScreenTest, GoesOnWithAPressWhileFiguresChange) {
  screen_.press(at(cardRect(0)));
  screen_.setCards({card("/a", 20), card("/b", 20)});
  screen_.release(at(cardRect(0)));
  EXPECT_EQ(taken(), Told{"/a"});
}

TEST_F(WelcomeScreenTest, ForgetsAPressWhenACardTakesThePlaceOfAnother) {
  screen_.press(at(cardRect(0)));
  screen_.setCards({card("/b"), card("/a")});
  screen_.release(at(cardRect(0)));
  EXPECT_EQ(taken(), Told{});
}

TEST_F(WelcomeScreenTest, TakesKeys) {
  EXPECT_FALSE(key(ui::key::kReturn)) << "nothing has the keyboard";
  EXPECT_FALSE(key('x'));
  EXPECT_EQ(takenChanges(), 0);
  EXPECT_TRUE(key(ui::key::kTab));
  EXPECT_EQ(takenChanges(), 1);
  key(ui::key::kTab);
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), Told{"/b"});
}

TEST_F(WelcomeScreenTest, HasNothingUnderThePointerOnceAnotherScreenWasShown) {
  const auto plain = picture();
  screen_.motion(at(cardRect(0)));
  EXPECT_FALSE(picture() == plain);
  screen_.releasePointer();
  EXPECT_TRUE(picture() == plain);
}

TEST_F(WelcomeScreenTest, LetsGoOfWhatWasPressedWhenAnotherScreenIsShown) {
  const auto plain = picture();
  screen_.press(at(cardRect(0)));
  screen_.releasePointer();
  EXPECT_TRUE(picture() == plain);
  EXPECT_EQ(taken(), Told{});
  screen_.motion(at(cardRect(1)));
  EXPECT_FALSE(picture() == plain) << "no longer held: another card lights up";
  screen_.release(at(cardRect(0)));
  EXPECT_EQ(taken(), Told{}) << "the end of a press that began before";
}

TEST_F(WelcomeScreenTest, TakesNoWheel) {
  screen_.wheel(at(cardRect(0)), 1);
  EXPECT_EQ(takenChanges(), 0);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
}

TEST_F(WelcomeScreenTest, ChoosesAFolderByTheKeyOfOpen) {
  EXPECT_TRUE(screen_.key({.keysym = 'o', .text = {}, .ctrl = true}));
  EXPECT_TRUE(screen_.key({.keysym = 'O', .text = {}, .ctrl = true})) << "with Caps Lock";
  EXPECT_FALSE(screen_.key({.keysym = 'o', .text = {}}));
  EXPECT_EQ(taken(), (Told{"choose", "choose"}));
}

class WelcomeScreenUpdateTest : public WelcomeScreenTest {
 protected:
  WelcomeScreenUpdateTest() {
    screen_.onDownload = [this] { told_.emplace_back("download"); };
    screen_.onDismissUpdate = [this] { told_.emplace_back("dismiss"); };
  }
  const UpdateBar& bar() { return screen_.updateBar(); }
  void tell() {
    screen_.setUpdate("Version 1.2.0 is there.");
    screen_.prepare();
  }
  void tab(bool shift = false) {
    EXPECT_TRUE(screen_.key({.keysym = ui::key::kTab, .text = {}, .shift = shift}));
  }
};

TEST_F(WelcomeScreenUpdateTest, HasALineUnderTheToolbarOnlyWhileThereIsAnUpdate) {
  const ui::Rect before = screen_.view().rect();
  EXPECT_TRUE(bar().rect().empty());
  tell();
  EXPECT_GT(takenChanges(), 0);
  EXPECT_EQ(bar().rect(), (ui::Rect{0, before.y, kWelcomeWidth, bar().wantedHeight()}));
  EXPECT_EQ(screen_.view().rect().y, before.y + bar().rect().h);
  EXPECT_EQ(picture().count(test::rgb(test::kNothingDrawn)), 0);
  screen_.setUpdate(std::nullopt);
  EXPECT_EQ(screen_.view().rect(), before);
  EXPECT_TRUE(bar().rect().empty());
}

TEST_F(WelcomeScreenUpdateTest, HandsItsButtonsOn) {
  tell();
  for (const ui::Rect& rect : {bar().downloadRect(), bar().dismissRect()}) {
    screen_.motion(at(cardRect(0), 0));
    screen_.motion(at(rect, 0));
    click(at(rect));
  }
  EXPECT_EQ(taken(), (Told{"download", "dismiss"}));
}

TEST_F(WelcomeScreenUpdateTest, TakesTabThroughTheLineAndTheCards) {
  tell();
  for (int i = 0; i < 3; ++i) tab();
  EXPECT_EQ(screen_.view().focusedControl(), 2) << "the button";
  tab();
  EXPECT_TRUE(bar().focused());
  EXPECT_FALSE(screen_.view().focusedControl()) << "one ring at a time";
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), Told{"download"});
  tab();
  EXPECT_EQ(screen_.view().focusedControl(), 0);
  tab(true);
  EXPECT_TRUE(bar().focused());
  tab(true);
  EXPECT_EQ(screen_.view().focusedControl(), 2);
}

TEST_F(WelcomeScreenUpdateTest, GivesTheKeyboardBackWhenTheLineGoes) {
  tell();
  tab(true);
  tab(true);
  for (int i = 0; i < 4 && !bar().focused(); ++i) tab();
  ASSERT_TRUE(bar().focused());
  screen_.setUpdate(std::nullopt);
  EXPECT_FALSE(bar().focused());
  for (int i = 0; i < 4; ++i) tab();
  EXPECT_EQ(screen_.view().focusedControl(), 0) << "round the cards and the button";
}

}  // namespace
}  // namespace app
