// The welcome view in a window.

#include "app/frame/welcome_view.h"

#include <string>
#include <utility>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

constexpr int kViewWidth = 640;
constexpr int kViewHeight = 420;

VolumeCard card(const std::string& path, std::int64_t used = 10, std::int64_t total = 100) {
  return {"Volume " + path, path, VolumeFigures{used, total}};
}

class WelcomeViewTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  explicit WelcomeViewTest(const ui::Palette& palette = ui::kLightPalette)
      : ViewsOnWindow(palette) {
    view.setRect({0, 0, kViewWidth, kViewHeight});
    view.onVolume = [&](const std::string& path) { told.push_back(path); };
    view.onChooseFolder = [&] { told.emplace_back("choose"); };
  }

  /// Cards for /0, /1 and so on.
  void setCards(int count) {
    std::vector<VolumeCard> cards;
    for (int i = 0; i < count; ++i) cards.push_back(card("/" + std::to_string(i)));
    view.setCards(cards);
  }
  void showUsage(std::int64_t used, std::int64_t total) {
    view.setCards({card("/v", used, total)});
  }
  const CardPlaces& places(std::size_t number = 0) const { return view.layout().cards.at(number); }
  bool key(unsigned long keysym, bool shift = false) {
    return view.key({.keysym = keysym, .text = {}, .shift = shift});
  }
  /// Where the keyboard is after `keysym`; -1 for nowhere.
  int focusAfter(unsigned long keysym, bool shift = false) {
    key(keysym, shift);
    return view.focusedControl().value_or(-1);
  }
  /// Whether `act` made the view ask for a frame.
  bool changedBy(const std::function<void()>& act) {
    int changes = 0;
    view.onChanged = [&] { ++changes; };
    act();
    view.onChanged = nullptr;
    return changes > 0;
  }
  Told taken() { return std::exchange(told, {}); }
  /// A press and its release at the middle of `rect`.
  void click(const ui::Rect& rect) {
    ui::MouseEvent event = at(rect);
    event.timeMs = now_;
    view.press(event);
    view.release(event);
  }
  void rest(std::int64_t ms) {
    view.tick(now_);
    now_ += ms;
  }
  test::Picture picture() {
    view.prepare();
    return ViewsOnWindow::picture(kViewWidth, kViewHeight,
                                  [&](ui::Canvas& canvas) { view.paint(canvas); });
  }

  ui::Icon icon;
  WelcomeView view{style, icon};
  Told told;
  std::int64_t now_ = 1'000'000;
};

class DarkWelcomeViewTest : public WelcomeViewTest {
 protected:
  DarkWelcomeViewTest() : WelcomeViewTest(ui::kDarkPalette) {}
};

/// How many pixels of the middle row of `track` have this colour: the width without the corners.
int widthOf(const test::Picture& picture, const ui::Rect& track, ui::Colour colour) {
  int count = 0;
  for (int x = track.x; x < track.x + track.w; ++x) {
    count += picture.at(x, track.y + track.h / 2) == rgb(colour);
  }
  return count;
}

// Drawing

TEST_F(WelcomeViewTest, DrawsABarOfTheShareInUse) {
  showUsage(1, 4);
  const ui::Rect track = places().track;
  const test::Picture shown = picture();
  EXPECT_EQ(widthOf(shown, track, style.palette().accent), track.w / 4);
  EXPECT_EQ(widthOf(shown, track, 0xFFE2E1E0), track.w - track.w / 4);
}

TEST_F(WelcomeViewTest, DrawsTheBarSixPixelsHigh) {
  showUsage(1, 2);
  const test::Picture shown = picture();
  const ui::Rect track = places().track;
  const int x = track.x + track.w / 4;
  const auto outline = rgb(ui::controlOutline(style.palette()));
  EXPECT_EQ(shown.at(x, track.y - 2), rgb(style.palette().raised));
  EXPECT_EQ(shown.at(x, track.y - 1), outline);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(shown.at(x, track.y + i), rgb(style.palette().accent));
  EXPECT_EQ(shown.at(x, track.y + 6), outline);
  EXPECT_EQ(shown.at(x, track.y + 7), rgb(style.palette().raised));
}

TEST_F(WelcomeViewTest, RoundsTheEndsOfTheBar) {
  showUsage(0, 2);
  const test::Picture shown = picture();
  const ui::Rect track = places().track;
  EXPECT_EQ(shown.at(track.x + track.w, track.y - 1), rgb(style.palette().raised));
  EXPECT_EQ(shown.at(track.x + track.w, track.y + 3), rgb(ui::controlOutline(style.palette())));
  EXPECT_EQ(shown.at(track.x + track.w - 1, track.y + 3), 0xE2E1E0u);
}

TEST_F(WelcomeViewTest, WarnsOnlyAboveNineTenths) {
  showUsage(90, 100);
  test::Picture shown = picture();
  EXPECT_EQ(shown.count(0xE0624A), 0);
  EXPECT_EQ(widthOf(shown, places().track, style.palette().accent), places().track.w * 9 / 10);
  showUsage(91, 100);
  shown = picture();
  EXPECT_EQ(shown.count(rgb(style.palette().accent)), 0);
  EXPECT_EQ(widthOf(shown, places().track, 0xFFE0624A), places().track.w * 91 / 100);
}

TEST_F(WelcomeViewTest, FillsTheBarWhenMoreIsUsedThanThereIs) {
  showUsage(300, 100);
  EXPECT_EQ(widthOf(picture(), places().track, 0xFFE0624A), places().track.w);
}

TEST_F(WelcomeViewTest, ShowsATinyShareAsThreePixels) {
  showUsage(1, 1'000'000'000);
  EXPECT_EQ(widthOf(picture(), places().track, style.palette().accent), 3);
}

TEST_F(WelcomeViewTest, DrawsNoBarWithoutASize) {
  for (const VolumeCard& bare : {card("/v", 0, 0), VolumeCard{"Share", "/s", std::nullopt}}) {
    view.setCards({bare});
    const ui::Rect track = places().track;
    EXPECT_EQ(widthOf(picture(), track, style.palette().raised), track.w);
  }
}

TEST_F(DarkWelcomeViewTest, HasADarkTrack) {
  showUsage(1, 2);
  const ui::Rect track = places().track;
  EXPECT_EQ(widthOf(picture(), track, 0xFF1C1C20), track.w - track.w / 2);
}

TEST_F(WelcomeViewTest, DrawsCardsInTheRaisedColourWithAnOutline) {
  setCards(1);
  const test::Picture shown = picture();
  const ui::Rect rect = places().card;
  const int middle = rect.x + rect.w / 2;
  EXPECT_EQ(shown.at(middle, rect.y), rgb(style.palette().border));
  EXPECT_EQ(shown.at(middle, rect.y + 1), rgb(style.palette().raised));
  EXPECT_EQ(shown.at(middle, rect.y + rect.h - 1), rgb(style.palette().border));
  EXPECT_EQ(shown.at(rect.x, rect.y + rect.h / 2), rgb(style.palette().border));
  EXPECT_EQ(shown.at(rect.x, rect.y), rgb(style.palette().view)) << "a rounded corner";
}

TEST_F(WelcomeViewTest, HighlightsTheCardUnderThePointer) {
  setCards(2);
  const auto ground = [&](std::size_t number) {
    const ui::Rect rect = places(number).card;
    return picture().at(rect.x + 4, rect.y + rect.h / 2);
  };
  EXPECT_TRUE(changedBy([&] { view.motion(at(places(1).card)); }));
  EXPECT_EQ(ground(0), rgb(style.palette().raised));
  EXPECT_EQ(ground(1), rgb(style.palette().pressed));
  EXPECT_TRUE(changedBy([&] { view.leave(); }));
  EXPECT_EQ(ground(1), rgb(style.palette().raised));
}

TEST_F(WelcomeViewTest, ShowsARingAroundWhatHasTheKeyboard) {
  setCards(2);
  key(ui::key::kTab);
  test::Picture shown = picture();
  const ui::Rect rect = places().card;
  EXPECT_EQ(shown.at(rect.x + rect.w / 2, rect.y), rgb(style.palette().accent));
  EXPECT_EQ(shown.at(rect.x + rect.w / 2, rect.y + 1), rgb(style.palette().accent));
  key(ui::key::kTab, true);
  shown = picture();
  const ui::Rect button = view.layout().button;
  EXPECT_EQ(shown.at(rect.x + rect.w / 2, rect.y), rgb(style.palette().border));
  EXPECT_EQ(shown.at(button.x + button.w / 2, button.y), rgb(style.palette().accent));
}

TEST_F(WelcomeViewTest, DrawsTheIconAndTheHeading) {
  const test::Picture shown = picture();
  const auto inked = [&](const ui::Rect& rect) {
    int count = 0;
    for (int y = rect.y; y < rect.y + rect.h; ++y) {
      for (int x = rect.x; x < rect.x + rect.w; ++x) {
        count += shown.at(x, y) != rgb(style.palette().view);
      }
    }
    return count;
  };
  EXPECT_GT(inked(view.layout().icon), 44 * 44 / 2);
  EXPECT_GT(inked(view.layout().heading), 300);
  EXPECT_GT(inked(view.layout().note), 300);
}

TEST_F(WelcomeViewTest, TellsOfTheOtherWayToChooseAFolder) {
  setCards(1);
  const ui::Rect hint = view.layout().hint;
  ASSERT_FALSE(hint.empty());
  EXPECT_GT(picture().part(hint.x, hint.y, hint.w, hint.h).count(rgb(style.palette().dimText)), 50);
  EXPECT_LE(style.textWidth(kCommandLineHint), hint.w) << "in the least window";
}

TEST_F(WelcomeViewTest, CoversItsWholeRect) {
  setCards(3);
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
}

// Pointer

TEST_F(WelcomeViewTest, TellsWhichCardWasPressed) {
  setCards(3);
  for (std::size_t number : {1u, 2u}) {
    view.press(at(places(number).card));
    view.release(at(places(number).card));
  }
  EXPECT_EQ(taken(), (Told{"/1", "/2"}));
}

TEST_F(WelcomeViewTest, ChoosesAFolderByItsButton) {
  setCards(3);
  view.press(at(view.layout().button));
  view.release(at(view.layout().button));
  EXPECT_EQ(taken(), (Told{"choose"}));
}

TEST_F(WelcomeViewTest, TakesBackAPressThatIsLetGoElsewhere) {
  setCards(3);
  view.press(at(places(0).card));
  view.release(at(places(1).card));
  view.press(at(places(0).card, 3));
  view.release(at(places(0).card, 3));
  EXPECT_TRUE(taken().empty());
}

TEST_F(WelcomeViewTest, LetsFiguresArriveDuringAPress) {
  view.setCards({{"Share", "/s", std::nullopt}});
  view.press(at(places().card));
  EXPECT_TRUE(changedBy([&] { view.setCards({card("/s")}); }));
  view.release(at(places().card));
  EXPECT_EQ(taken(), (Told{"/s"}));
}

TEST_F(WelcomeViewTest, TakesBackAPressWhenOtherVolumesCome) {
  setCards(2);
  view.press(at(places().card));
  view.setCards({card("/new"), card("/0"), card("/1")});
  view.release(at(places().card));
  EXPECT_TRUE(taken().empty());
}

// Cards that come under the pointer

TEST_F(WelcomeViewTest, TakesNoPressAtOnceOnACardInThePlaceOfAnother) {
  setCards(2);
  const ui::Rect place = places().card;
  view.motion(at(place, 0));
  view.setCards({card("/1"), card("/2")});
  view.prepare();
  click(place);
  EXPECT_TRUE(taken().empty()) << "meant for the volume that is gone";
  rest(499);
  click(place);
  EXPECT_TRUE(taken().empty());
  rest(1);
  click(place);
  EXPECT_EQ(taken(), Told{"/1"});
}

TEST_F(WelcomeViewTest, TakesAPressOnACardThatThePointerMovedOnTo) {
  setCards(2);
  const ui::Rect place = places().card;
  view.motion(at(place, 0));
  view.setCards({card("/1"), card("/2")});
  view.motion({.x = 1, .y = 1});
  view.motion(at(place, 0));
  click(place);
  EXPECT_EQ(taken(), Told{"/1"});
}

TEST_F(WelcomeViewTest, TakesNoPressAtOnceOnACardThatMovedUnderThePointer) {
  setCards(4);
  rest(1000);
  const ui::Rect place = places(2).card;
  view.motion(at(place, 0));
  view.setRect({0, view.layout().rowStep, kViewWidth, kViewHeight});
  ASSERT_EQ(places(0).card, place) << "a row further down, where another was";
  click(place);
  EXPECT_TRUE(taken().empty());
  rest(500);
  click(place);
  EXPECT_EQ(taken(), Told{"/0"});
}

TEST_F(WelcomeViewTest, TakesNoPressAtOnceOnWhatJustCameIntoView) {
  setCards(2);
  rest(1000);
  for (const ui::Rect& place : {places().card, view.layout().button}) {
    view.motion(at(place, 0));
    view.pointerLost();
    view.arrive();
    view.motion(at(place, 0));
    click(place);
    EXPECT_TRUE(taken().empty());
    rest(500);
    click(place);
    EXPECT_EQ(taken().size(), 1u);
  }
}

TEST_F(WelcomeViewTest, TakesPressesAtOnceOnTheFirstCardsAndOnThoseThatStay) {
  setCards(2);
  click(places().card);
  view.setCards({card("/0"), card("/1"), card("/2")});
  click(places().card);
  EXPECT_EQ(taken(), (Told{"/0", "/0"}));
}

TEST_F(WelcomeViewTest, HasNoCardUnderThePointerWhileItsBarIsDragged) {
  setCards(20);
  view.motion(at(view.cardRect(0), 0));
  ui::MouseEvent event = at(view.scroller().thumb());
  view.press(event);
  event.y += 50;
  event.x = view.cardRect(0).x + 20;
  view.motion(event);
  const test::Picture shown = picture();
  EXPECT_EQ(shown.count(rgb(style.palette().pressed)), 0);
}

TEST_F(WelcomeViewTest, MaySetOtherCardsWhileItTellsOfAPress) {
  setCards(1);
  view.onVolume = [&](const std::string& path) {
    view.setCards({});
    told.push_back(path);
  };
  view.press(at(places().card));
  view.release(at(places().card));
  EXPECT_EQ(taken(), (Told{"/0"}));
}

// Keyboard

TEST_F(WelcomeViewTest, GoesRoundCardsAndButtonWithTab) {
  setCards(2);
  EXPECT_FALSE(view.focusedControl());
  EXPECT_EQ(focusAfter(ui::key::kTab), 0);
  EXPECT_EQ(focusAfter(ui::key::kTab), 1);
  EXPECT_EQ(focusAfter(ui::key::kTab), 2) << "the button";
  EXPECT_EQ(focusAfter(ui::key::kTab), 0);
  EXPECT_EQ(focusAfter(ui::key::kTab, true), 2);
  EXPECT_EQ(focusAfter(ui::key::kLeftTab, true), 1);
}

TEST_F(WelcomeViewTest, BeginsAtTheButtonWithShiftAndTab) {
  setCards(2);
  EXPECT_EQ(focusAfter(ui::key::kTab, true), 2);
}

TEST_F(WelcomeViewTest, MovesAmongCardsWithArrows) {
  setCards(5);
  ASSERT_EQ(view.layout().columns, 2);
  EXPECT_EQ(focusAfter(ui::key::kDown), 0) << "the first arrow only shows where it begins";
  EXPECT_EQ(focusAfter(ui::key::kLeft), 0);
  EXPECT_EQ(focusAfter(ui::key::kRight), 1);
  EXPECT_EQ(focusAfter(ui::key::kUp), 1);
  EXPECT_EQ(focusAfter(ui::key::kDown), 3);
  EXPECT_EQ(focusAfter(ui::key::kDown), 4) << "the last row is short";
  EXPECT_EQ(focusAfter(ui::key::kRight), 4);
  EXPECT_EQ(focusAfter(ui::key::kDown), 5) << "the button";
  EXPECT_EQ(focusAfter(ui::key::kDown), 5);
  EXPECT_EQ(focusAfter(ui::key::kLeft), 5);
  EXPECT_EQ(focusAfter(ui::key::kUp), 4);
  EXPECT_EQ(focusAfter(ui::key::kUp), 2);
}

TEST_F(WelcomeViewTest, HasOnlyTheButtonToFocusWithoutCards) {
  for (const auto keysym : {ui::key::kTab, ui::key::kUp, ui::key::kDown, ui::key::kRight}) {
    EXPECT_EQ(focusAfter(keysym), 0);
  }
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_EQ(taken(), (Told{"choose"}));
}

TEST_F(WelcomeViewTest, ActsOnEnterAndSpace) {
  setCards(2);
  EXPECT_FALSE(key(ui::key::kReturn)) << "nothing has the keyboard";
  key(ui::key::kTab);
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_TRUE(key(ui::key::kKeypadEnter));
  key(ui::key::kTab);
  EXPECT_TRUE(key(' '));
  key(ui::key::kTab);
  EXPECT_TRUE(key(' '));
  EXPECT_EQ(taken(), (Told{"/0", "/0", "/1", "choose"}));
}

TEST_F(WelcomeViewTest, LeavesOtherKeysAlone) {
  setCards(2);
  EXPECT_FALSE(key('a'));
  EXPECT_FALSE(key(ui::key::kEscape));
  EXPECT_FALSE(view.key({.keysym = ui::key::kTab, .text = {}, .ctrl = true}));
  EXPECT_FALSE(view.focusedControl());
}

TEST_F(WelcomeViewTest, KeepsTheKeyboardOnItsVolume) {
  setCards(2);
  focusAfter(ui::key::kTab);
  view.setCards({card("/new"), card("/0"), card("/1")});
  EXPECT_EQ(view.focusedControl(), 1);
  view.setCards({card("/1")});
  EXPECT_FALSE(view.focusedControl()) << "its volume is gone";
}

TEST_F(WelcomeViewTest, KeepsTheKeyboardOnItsButton) {
  setCards(2);
  focusAfter(ui::key::kTab, true);
  setCards(5);
  EXPECT_EQ(view.focusedControl(), 5);
  view.setRect({0, 0, kViewWidth, 230});
  EXPECT_EQ(view.focusedControl(), 5);
  view.setRect({0, 0, kViewWidth, 100});  // no room for a card
  EXPECT_EQ(view.focusedControl(), 0);
  EXPECT_TRUE(view.layout().cards.empty());
}

// More cards than have room

TEST_F(WelcomeViewTest, KeepsTheCardWithTheKeyboardInSight) {
  setCards(20);
  const auto isSeen = [&](int number) {
    const ui::Rect card = view.cardRect(number);
    return ui::intersect(card, view.layout().cardsView) == card;
  };
  ASSERT_FALSE(isSeen(19));
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(focusAfter(ui::key::kTab), i);
    EXPECT_TRUE(isSeen(i)) << i;
  }
  focusAfter(ui::key::kTab);
  EXPECT_EQ(focusAfter(ui::key::kTab), 0) << "round the button";
  EXPECT_TRUE(isSeen(0));
  while (focusAfter(ui::key::kDown) != 20) EXPECT_TRUE(isSeen(*view.focusedControl()));
  while (focusAfter(ui::key::kUp) > 1) EXPECT_TRUE(isSeen(*view.focusedControl()));
  key(ui::key::kDown);
  key(ui::key::kDown);
  view.setRect({0, 0, kViewWidth, 230});
  EXPECT_TRUE(isSeen(*view.focusedControl())) << "in a lower view";
}

TEST_F(WelcomeViewTest, ScrollsByTheWheelAndPressesWhatIsThere) {
  setCards(20);
  const ui::Rect first = view.cardRect(0);
  view.motion(at(first, 0));
  EXPECT_TRUE(changedBy([&] { view.wheel(at(first, 0), 1); }));
  EXPECT_EQ(view.cardRect(2), first) << "a row further";
  view.press(at(first));
  view.release(at(first));
  EXPECT_EQ(taken(), Told{"/2"});
  view.wheel(at(first, 0), 100);
  const ui::Rect last = view.cardRect(19);
  EXPECT_EQ(last.y + last.h, view.layout().cardsView.y + view.layout().cardsView.h);
  view.wheel(at(first, 0), -100);
  EXPECT_EQ(view.cardRect(0), first);
  setCards(2);
  EXPECT_FALSE(changedBy([&] { view.wheel(at(first, 0), 1); })) << "all have room";
}

TEST_F(WelcomeViewTest, ScrollsByItsBar) {
  setCards(20);
  const ui::Rect thumb = view.scroller().thumb();
  ui::MouseEvent event = at(thumb);
  view.press(event);
  event.y += 1000;
  view.motion(event);
  view.release(event);
  const ui::Rect last = view.cardRect(19);
  EXPECT_EQ(last.y + last.h, view.layout().cardsView.y + view.layout().cardsView.h);
  event.y -= 2000;
  view.motion(event);
  EXPECT_EQ(view.cardRect(19), last) << "it was let go";
  EXPECT_TRUE(taken().empty());
}

TEST_F(WelcomeViewTest, ShowsNothingOfCardsOutOfSight) {
  setCards(20);
  view.wheel(at(view.cardRect(0), 0), 1);
  const ui::Rect cards = view.layout().cardsView;
  const ui::Rect hidden = view.cardRect(0);
  ASSERT_LT(hidden.y, cards.y);
  const test::Picture shown = picture();
  EXPECT_EQ(shown.at(hidden.x + 20, cards.y - 2), rgb(style.palette().view));
  const ui::Rect below = view.cardRect(19);
  view.press(at(below));
  view.release(at(below));
  view.press(at(hidden));
  view.release(at(hidden));
  EXPECT_TRUE(taken().empty());
  const ui::Rect thumb = view.scroller().thumb();
  EXPECT_EQ(shown.at(thumb.x + 5, thumb.y + 10), rgb(style.palette().dimText));
}

}  // namespace
}  // namespace app
