// The main window under real keys and presses, which a second client makes.

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "tests/app/main_window_fixture.h"

namespace app {
namespace {

TEST_F(MainWindowInputTest, ScansTheVolumeOfAPressedCard) {
  const ui::Rect card = firstCard();
  HeldFolder held("/");  // of the machine's own files nothing is to be read
  runWith([&](WindowUser& user) {
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    user.click(card);
    EXPECT_TRUE(user.comesToTitle(titleOf("/"))) << user.title();
    EXPECT_TRUE(held.waitUntilReached());
    user.pressWithControl('o');
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    held.release();  // it was left, and lists nothing any more
  });
}

TEST_F(MainWindowInputTest, ScansTheFolderAgain) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    for (const bool f5 : {true, false}) {
      ASSERT_TRUE(user.comesToTheWholeMap());
      HeldFolder held("a");
      if (f5) user.press(ui::key::kF5);
      if (!f5) user.pressWithControl('r');
      EXPECT_TRUE(held.waitUntilReached());
      EXPECT_TRUE(user.comesToAScan());
    }
    EXPECT_EQ(user.title(), titleOf(folder_));
  });
}

TEST_F(MainWindowInputTest, GoesBackToTheWelcome) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    user.pressWithControl('o');
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    EXPECT_TRUE(
        eventually([&] { return user.pixel(1099, 719) == (ui::kLightPalette.view & 0xFFFFFF); }));
    user.press(ui::key::kF5);
    user.press(ui::key::kEscape);
    user.press(ui::key::kBackSpace);
    user.pressWithControl('c');
    user.pressWithControl('2');
    EXPECT_EQ(user.title(), kWelcomeTitle);
  });
}

TEST_F(MainWindowInputTest, ShowsAtOnceThatAScanIsStopped) {
  HeldFolder held("held");
  window_->scanPath(folder_);
  const ui::Rect firstRow = firstKind();
  runWith([&](WindowUser& user) {
    user.moveOntoStatus();  // over the map it would tell of each picture that comes
    ASSERT_TRUE(held.waitUntilReached());
    ASSERT_TRUE(user.comesToMap());
    ASSERT_TRUE(user.comesToBeFilled(firstRow));
    const Pixels status = user.status();
    user.press(ui::key::kEscape);
    ASSERT_TRUE(user.comesToTheEnd());
    const Pixels stopped = user.status();
    EXPECT_TRUE(stopped != status);
    const Pixels plain = user.toolbar();
    user.press(ui::key::kEscape);
    user.client.movePointer(20, frame().toolbar.h / 2);
    ASSERT_TRUE(eventually([&] { return user.toolbar() != plain; })) << "after the key";
    EXPECT_TRUE(user.status() == stopped) << "it is stopped once";
    held.release();
  });
}

TEST_F(MainWindowInputTest, EndsTheHighlightBeforeItStopsTheScan) {
  HeldFolder held("held");
  window_->scanPath(folder_);
  const ui::Rect firstRow = firstKind();
  runWith([&](WindowUser& user) {
    user.moveOntoStatus();
    ASSERT_TRUE(user.comesToMap());
    ASSERT_TRUE(user.comesToBeFilled(firstRow));
    const Pixels plain = user.map();
    const Pixels scanning = user.toolbar();
    user.click(firstRow);
    EXPECT_TRUE(eventually([&] { return user.map() != plain; }));
    user.moveOntoStatus();
    user.press(ui::key::kEscape);
    EXPECT_TRUE(eventually([&] { return user.map() == plain; }));
    EXPECT_TRUE(user.toolbar() == scanning);
    user.press(ui::key::kEscape);
    EXPECT_TRUE(eventually([&] { return user.toolbar() != scanning; }));
    held.release();
  });
}

TEST_F(MainWindowInputTest, SeesWhatIsUnderThePointerOnceAMenuIsClosed) {
  window_->scanPath(folder_);
  const ui::Rect row = firstKind();
  runWith([&](WindowUser& user) {
    user.moveOntoStatus();
    ASSERT_TRUE(user.comesToTheEnd());
    ASSERT_TRUE(user.comesToBeFilled(row));
    const Pixels plain = user.pixels(row);
    user.moveTo(row);
    ASSERT_TRUE(eventually([&] { return user.pixels(row) != plain; }));
    const Pixels hovered = user.pixels(row);
    user.press(ui::key::kF10);
    EXPECT_TRUE(eventually([&] { return user.pixels(row) == plain; }));
    user.press(ui::key::kEscape);
    EXPECT_TRUE(eventually([&] { return user.pixels(row) == hovered; })) << "without a motion";
  });
}

TEST_F(MainWindowInputTest, ShowsTheMeasureOfAKey) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    for (const unsigned long digit : std::array<unsigned long, 4>{'2', '3', '4', '1'}) {
      const Pixels before = user.toolbar();
      user.pressWithControl(digit);
      EXPECT_TRUE(eventually([&] { return user.toolbar() != before; })) << digit;
    }
  });
}

TEST_F(MainWindowInputTest, GoesAlongTheFoldersThatWereInFocus) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    const auto comesTo = [&](const Pixels& pixels) {
      return eventually([&] { return user.toolbar() == pixels; });
    };
    user.press(ui::key::kDown);
    const Pixels atRoot = user.toolbar();
    user.press(ui::key::kReturn);
    EXPECT_TRUE(eventually([&] { return user.toolbar() != atRoot; }));
    const Pixels inside = user.toolbar();
    user.pressWithControl(ui::key::kLeft);
    EXPECT_TRUE(comesTo(atRoot));
    user.pressWithControl(ui::key::kRight);
    EXPECT_TRUE(comesTo(inside));
    user.press(ui::key::kBackSpace);
    EXPECT_TRUE(comesTo(atRoot));
    user.pressWithControl(ui::key::kLeft);
    EXPECT_TRUE(comesTo(inside));
    user.pressWithControl(ui::key::kHome);
    EXPECT_TRUE(comesTo(atRoot));
    user.pressWithControl(ui::key::kLeft);
    user.pressWithControl(ui::key::kUp);
    EXPECT_TRUE(comesTo(atRoot));
  });
}

TEST_F(MainWindowInputTest, PutsThePathOfTheCurrentRowOnTheClipboard) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    user.press(ui::key::kDown);  // to the largest folder
    user.pressWithControl('c');
    ASSERT_TRUE(
        eventually([&] { return user.client.selectionOwner("CLIPBOARD") == user.window(); }));
    user.client.requestSelection("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(eventually([&] { return user.client.answer().has_value(); }));
    EXPECT_EQ(user.client.textProperty(user.client.requestor(), "ANSWER", "UTF8_STRING"),
              folder_ + "/a");
  });
}

TEST_F(MainWindowInputTest, ClosesWithAKey) {
  window_->scanPath(folder_);
  std::atomic<bool> closed = false;
  const FrameLayout parts = frame();
  const test::ScanEnd end = test::ScanEnd::find();
  const std::jthread thread([&] {
    WindowUser user(parts, end);
    user.pressWithControl('q');
    const bool done = eventually([&] { return closed.load(); });
    EXPECT_TRUE(done);
    if (!done) user.close();
  });
  window_->run();
  closed = true;
}

TEST_F(MainWindowInputTest, IsUsableAtEverySizeDuringAStormOfSizes) {
  window_->scanPath(folder_);
  const FrameLayout small = frame(640, 420);
  runWith([&](WindowUser& user) {
    for (int i = 0; i < 120; ++i) {
      user.client.resizeWindow(user.window(), 640 + i * 37 % 600, 420 + i * 53 % 500);
      if (i % 10 == 0) user.client.movePointer(100 + i * 3, 60 + i * 2);
    }
    user.client.resizeWindow(user.window(), 640, 420);
    const ui::Rect& map = small.map;
    EXPECT_TRUE(eventually([&] {
      return user.isMapAt(map.x + 10, map.y + map.h - 10) &&
             user.pixel(635, 415) == (ui::kLightPalette.window & 0xFFFFFF);
    }));
    ASSERT_TRUE(user.comesToTheEnd());
    const Pixels before = user.pixels(small.list);
    user.click(map);
    EXPECT_TRUE(eventually([&] { return user.pixels(small.list) != before; }))
        << "the list goes to what is pressed on the map";
  });
}

TEST_F(MainWindowInputTest, LetsGoOfAPressOnTheMapWhenTheScanIsReplaced) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    const ui::Rect& map = user.frame().map;
    for (const unsigned long keysym : {ui::key::kF5, ui::key::Keysym{'o'}}) {
      ASSERT_TRUE(user.comesToTheWholeMap());
      user.client.movePointer(map.x + 100, map.y + 100);
      user.client.pressButton(1);
      if (keysym == ui::key::kF5) user.press(keysym);
      if (keysym == 'o') user.pressWithControl(keysym);
      for (int i = 0; i < 20; ++i) user.client.movePointer(map.x + 10 * i, map.y + 8 * i);
      user.client.releaseButton(1);
    }
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
  });
}

TEST_F(MainWindowInputTest, StartsNothingWithAPressThatBeganInTheScan) {
  window_->scanPath(folder_);
  const ui::Rect card = firstCard();
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    user.client.movePointer(card.x + card.w / 2, card.y + card.h / 2);
    user.client.pressButton(1);
    user.pressWithControl('o');
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    user.client.releaseButton(1);
    user.pressWithControl('q');  // handled after the release
  });
  test::OtherClient client;
  const unsigned long id = client.shownWindow("Heapgauge");
  EXPECT_EQ(client.textProperty(id, "_NET_WM_NAME", "UTF8_STRING"), kWelcomeTitle);
}

/// A screen with twice as many dots.
class LargeMainWindowInputTest : public MainWindowInputTest {
 protected:
  LargeMainWindowInputTest()
      : MainWindowInputTest({.width = 2600, .height = 1700, .resources = "Xft.dpi:\t192\n"}) {}
};

TEST_F(LargeMainWindowInputTest, IsTwiceAsLarge) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    EXPECT_EQ(user.client.sizeOf(user.window()), std::make_pair(2200, 1440));
    ASSERT_TRUE(user.comesToTheWholeMap());
    const Pixels before = user.pixels(user.frame().list);
    user.click(user.frame().map);
    EXPECT_TRUE(eventually([&] { return user.pixels(user.frame().list) != before; }));
    user.pressWithControl('o');
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
  });
}

}  // namespace
}  // namespace app
