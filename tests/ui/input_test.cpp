#include "ui/input.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/environment.h"
#include "tests/ui/wall_clock.h"
#include "tests/ui/window_test_base.h"

namespace test {
namespace {

TEST(ClickCounter, CountsAPress399MsLaterAsTheSecond) {
  ui::ClickCounter counter;
  EXPECT_EQ(counter.count(), 0);
  EXPECT_EQ(counter.press(50, 50, 1'000'000), 1);
  EXPECT_EQ(counter.press(50, 50, 1'000'399), 2);
  EXPECT_EQ(counter.count(), 2);
}

TEST(ClickCounter, StartsAgain400MsLater) {
  ui::ClickCounter counter;
  EXPECT_EQ(counter.press(50, 50, 1'000'000), 1);
  EXPECT_EQ(counter.press(50, 50, 1'000'400), 1);
}

TEST(ClickCounter, CountsQuickPressesWithoutBound) {
  ui::ClickCounter counter;
  for (int i = 1; i <= 10; ++i) EXPECT_EQ(counter.press(50, 50, 1'000'000 + i * 399), i);
}

TEST(ClickCounter, AllowsFourPixelsInEachDirection) {
  ui::ClickCounter counter;
  EXPECT_EQ(counter.press(50, 50, 1'000'000), 1);
  EXPECT_EQ(counter.press(54, 46, 1'000'010), 2);
  EXPECT_EQ(counter.press(50, 50, 1'000'020), 3);
}

TEST(ClickCounter, StartsAgainFivePixelsAway) {
  for (const auto& [x, y] : {std::pair{55, 50}, {45, 50}, {50, 55}, {50, 45}}) {
    ui::ClickCounter counter;
    counter.press(50, 50, 1'000'000);
    EXPECT_EQ(counter.press(x, y, 1'000'010), 1) << x << "," << y;
    EXPECT_EQ(counter.press(x, y, 1'000'020), 2) << "measured from the latest press";
  }
}

/// A press, release, motion or wheel step in one line.
std::string describe(const std::string& what, const ui::MouseEvent& event) {
  return what + " " + std::to_string(event.x) + "," + std::to_string(event.y) + " button " +
         std::to_string(event.button) + " clicks " + std::to_string(event.clicks) +
         (event.shift ? " shift" : "") + (event.ctrl ? " ctrl" : "");
}

class InputTest : public WindowTest {
 protected:
  void SetUp() override {
    show();
    other.movePointer(50, 40);
    settle();
    window.onPress = [&](const ui::MouseEvent& e) { seen.push_back(describe("press", e)); };
    window.onRelease = [&](const ui::MouseEvent& e) { seen.push_back(describe("release", e)); };
    window.onMotion = [&](const ui::MouseEvent& e) { seen.push_back(describe("motion", e)); };
    window.onLeave = [&] { seen.push_back("leave"); };
    window.onWheel = [&](const ui::MouseEvent& e, int dx, int dy) {
      seen.push_back(describe("wheel", e) + " by " + std::to_string(dx) + "," + std::to_string(dy));
    };
    window.onKey = [&](const ui::KeyEvent& e) { keys.push_back(e); };
  }

  void click(unsigned button) {
    other.pressButton(button);
    other.releaseButton(button);
  }

  std::vector<std::string> seen;
  std::vector<ui::KeyEvent> keys;
};

using Lines = std::vector<std::string>;

TEST_F(InputTest, TellsPressAndReleaseWithPlaceAndButton) {
  click(1);
  other.movePointer(90, 60);
  settle();
  seen.clear();
  click(3);
  settle();
  EXPECT_EQ(seen, (Lines{"press 90,60 button 3 clicks 1", "release 90,60 button 3 clicks 1"}));
}

TEST_F(InputTest, CountsADoubleClick) {
  const SlowSpans slow;
  click(1);
  click(1);
  settle();
  EXPECT_EQ(seen, (Lines{"press 50,40 button 1 clicks 1", "release 50,40 button 1 clicks 1",
                         "press 50,40 button 1 clicks 2", "release 50,40 button 1 clicks 2"}));
}

TEST_F(InputTest, CountsALeftAndAQuickRightClickAsOneSeries) {
  const SlowSpans slow;
  click(1);
  click(3);
  settle();
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[2], "press 50,40 button 3 clicks 2");
}

TEST_F(InputTest, TellsExtraButtonsAsPresses) {
  click(8);
  settle();
  EXPECT_EQ(seen, (Lines{"press 50,40 button 8 clicks 1", "release 50,40 button 8 clicks 1"}));
}

TEST_F(InputTest, TellsHeldKeysWithAPressButNotWithARelease) {
  const SlowSpans slow;
  click(1);
  other.pressKey(0xffe1);  // Shift_L
  other.pressKey(XK_Control_L);
  click(1);
  other.releaseKey(XK_Control_L);
  other.releaseKey(0xffe1);
  settle();
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[2], "press 50,40 button 1 clicks 2 shift ctrl");
  EXPECT_EQ(seen[3], "release 50,40 button 1 clicks 2");
}

TEST_F(InputTest, TellsWheelStepsInFourDirectionsAndNoReleases) {
  for (unsigned button = 4; button <= 7; ++button) click(button);
  settle();
  EXPECT_EQ(
      seen,
      (Lines{"wheel 50,40 button 4 clicks 1 by 0,-1", "wheel 50,40 button 5 clicks 1 by 0,1",
             "wheel 50,40 button 6 clicks 1 by -1,0", "wheel 50,40 button 7 clicks 1 by 1,0"}));
}

TEST_F(InputTest, TellsHeldKeysWithTheWheel) {
  other.pressKey(XK_Control_L);
  click(4);
  other.releaseKey(XK_Control_L);
  settle();
  EXPECT_EQ(seen, (Lines{"wheel 50,40 button 4 clicks 1 ctrl by 0,-1"}));
}

TEST_F(InputTest, WheelDoesNotDisturbADoubleClick) {
  const SlowSpans slow;
  click(1);
  click(4);
  click(1);
  settle();
  ASSERT_EQ(seen.size(), 5u);
  EXPECT_EQ(seen[3], "press 50,40 button 1 clicks 2");
}

TEST_F(InputTest, TellsOnlyTheNewestOfManyMotions) {
  for (int i = 0; i <= 100; ++i) other.movePointer(i, i / 2);
  settle();
  EXPECT_EQ(seen, (Lines{"motion 100,50 button 0 clicks 1"}));
}

TEST_F(InputTest, TellsHeldKeysWithAMotion) {
  other.pressKey(0xffe1);  // Shift_L
  other.movePointer(60, 41);
  other.releaseKey(0xffe1);
  settle();
  EXPECT_EQ(seen, (Lines{"motion 60,41 button 0 clicks 1 shift"}));
}

TEST_F(InputTest, TellsWhenThePointerLeaves) {
  other.movePointer(600, 500);
  settle();
  EXPECT_EQ(seen, (Lines{"leave"}));
}

TEST_F(InputTest, TellsKeysWithTheirText) {
  other.focus(window.xid());
  other.pressKey('a');
  other.releaseKey('a');
  settle();
  ASSERT_EQ(keys.size(), 1u);
  EXPECT_EQ(keys[0].keysym, static_cast<unsigned long>('a'));
  EXPECT_EQ(keys[0].text, "a");
  EXPECT_FALSE(keys[0].shift);
  EXPECT_FALSE(keys[0].ctrl);
}

TEST_F(InputTest, TellsLettersAsTheModifiersMakeThem) {
  other.focus(window.xid());
  other.pressKey(0xffe1);  // Shift_L
  other.pressKey('a');
  other.releaseKey('a');
  other.releaseKey(0xffe1);
  settle();
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0].text, "");
  EXPECT_FALSE(keys[0].shift);  // the state before the key itself
  EXPECT_EQ(keys[1].keysym, static_cast<unsigned long>('A'));
  EXPECT_EQ(keys[1].text, "A");
  EXPECT_TRUE(keys[1].shift);
}

TEST_F(InputTest, TellsControlWithALetter) {
  other.focus(window.xid());
  other.pressKey(XK_Control_L);
  other.pressKey('c');
  other.releaseKey('c');
  other.releaseKey(XK_Control_L);
  settle();
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[1].keysym, static_cast<unsigned long>('c'));
  EXPECT_TRUE(keys[1].ctrl);
}

TEST_F(InputTest, TellsKeysWithoutText) {
  other.focus(window.xid());
  for (const unsigned long key : std::array<unsigned long, 3>{XK_F5, XK_Page_Down, XK_Escape}) {
    other.pressKey(key);
    other.releaseKey(key);
  }
  settle();
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[0].keysym, static_cast<unsigned long>(XK_F5));
  EXPECT_EQ(keys[0].text, "");
  EXPECT_EQ(keys[1].keysym, static_cast<unsigned long>(XK_Page_Down));
  EXPECT_EQ(keys[2].keysym, static_cast<unsigned long>(XK_Escape));
}

TEST_F(InputTest, TellsWhatKeysOfEveryScriptType) {
  other.focus(window.xid());
  const std::vector<std::pair<unsigned long, std::string>> typed = {{XK_a, "a"},
                                                                    {XK_eacute, "é"},
                                                                    {XK_lstroke, "ł"},
                                                                    {XK_Ccaron, "Č"},
                                                                    {XK_gbreve, "ğ"},
                                                                    {XK_Ukrainian_yi, "ї"},
                                                                    {XK_Cyrillic_YU, "Ю"},
                                                                    {XK_Greek_alphaaccent, "ά"},
                                                                    {XK_hebrew_aleph, "א"},
                                                                    {XK_Arabic_alef, "ا"},
                                                                    {XK_EuroSign, "€"},
                                                                    {0x01000000 + 0x4E2D, "中"},
                                                                    {XK_F5, ""}};
  for (const auto& [keysym, text] : typed) {
    keys.clear();
    other.typeForeignKey(keysym);
    settle();
    ASSERT_EQ(keys.size(), 1u) << text;
    EXPECT_EQ(keys[0].keysym, keysym);
    EXPECT_EQ(keys[0].typed, text);
  }
}

TEST_F(InputTest, LeavesTextAndSymbolOfKeysAsXlibGivesThem) {
  other.focus(window.xid());
  other.typeForeignKey(XK_eacute);
  settle();
  other.typeForeignKey(XK_Ukrainian_yi);
  settle();
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0].text, "\xE9");
  EXPECT_EQ(keys[1].text, "");
}

TEST_F(InputTest, TellsTheCharacterThatADeadKeyMakesByItself) {
  other.focus(window.xid());
  other.typeForeignKey(XK_dead_acute);
  settle();
  other.typeForeignKey('e');
  settle();
  other.typeForeignKey('e');
  settle();
  ASSERT_EQ(keys.size(), 4u);
  EXPECT_EQ(keys[0].keysym, static_cast<unsigned long>(XK_dead_acute));
  EXPECT_EQ(keys[0].typed, "");
  EXPECT_EQ(keys[1].keysym, static_cast<unsigned long>('e'));
  EXPECT_EQ(keys[1].text, "e");
  EXPECT_EQ(keys[1].typed, "");
  EXPECT_EQ(keys[2].typed, "é");
  EXPECT_EQ(keys[2].text, "");
  EXPECT_EQ(keys[3].typed, "e");
}

TEST(InputMethods, MayBeMissingForAsciiAndLatin1) {
  ScopedEnvironment environment;
  const TempDirectory empty;
  environment.set("XLOCALEDIR", empty.path());
  WindowOnServer there;
  there.show();
  std::string typed;
  there.window.onKey = [&](const ui::KeyEvent& event) { typed += event.typed; };
  there.other.focus(there.window.xid());
  for (const unsigned long keysym : std::array<unsigned long, 3>{XK_a, XK_eacute, XK_F5}) {
    there.other.typeForeignKey(keysym);
    there.settle();
  }
  EXPECT_EQ(typed, "aé");
}

TEST(InputMethods, AreNotWaitedFor) {
  ScopedEnvironment environment;
  environment.set("XMODIFIERS", "@im=silent");
  WindowOnServer there;
  there.other.claimInputMethod("silent");
  there.show();
  std::string typed;
  there.window.onKey = [&](const ui::KeyEvent& event) { typed += event.typed; };
  there.other.focus(there.window.xid());
  there.other.typeForeignKey(XK_Ukrainian_yi);
  there.settle();
  EXPECT_EQ(typed, "ї");
}

TEST_F(InputTest, DropsWhatNoCallableIsSetFor) {
  window.onPress = nullptr;
  window.onRelease = nullptr;
  window.onMotion = nullptr;
  window.onLeave = nullptr;
  window.onWheel = nullptr;
  window.onKey = nullptr;
  click(1);
  click(4);
  other.focus(window.xid());
  other.pressKey('a');
  other.releaseKey('a');
  other.movePointer(600, 500);
  settle();
  EXPECT_TRUE(seen.empty());
}

TEST_F(InputTest, MeasuresSpansByAClockThatNobodySets) {
  std::vector<std::int64_t> times;
  window.onMotion = [&](const ui::MouseEvent& e) { times.push_back(e.timeMs); };
  const auto move = [&](int x, std::int64_t clockOffByMs) {
    const WallClock clock(clockOffByMs);
    other.movePointer(x, 40);
    settle();
  };
  move(60, 0);
  move(61, -3'600'000);
  move(62, 0);
  move(63, 3'600'000);
  ASSERT_EQ(times.size(), 4u);
  EXPECT_TRUE(std::ranges::is_sorted(times)) << "it goes on";
  EXPECT_LT(times[3] - times[0], 3'600'000);
}

TEST_F(InputTest, TicksOnWhenTheClockIsSetBack) {
  int ticks = 0;
  window.setTick(1, [&] {
    if (++ticks == 3) window.quit();
  });
  const WallClock clock(-3'600'000);
  window.run();
  EXPECT_EQ(ticks, 3);
}

TEST_F(InputTest, CountsAPressThatNoCallableIsSetFor) {
  const SlowSpans slow;
  const auto onPress = window.onPress;
  window.onPress = nullptr;
  click(1);
  settle();
  window.onPress = onPress;
  click(1);
  settle();
  ASSERT_FALSE(seen.empty());
  EXPECT_EQ(seen.back(), "release 50,40 button 1 clicks 2");
}

}  // namespace
}  // namespace test
