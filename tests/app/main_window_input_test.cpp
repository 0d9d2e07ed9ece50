// The main window under real keys and presses, which a second client makes.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "app/frame/frame_layout.h"
#include "app/frame/welcome_screen.h"
#include "app/main_window.h"
#include "app/map/cushion_shading.h"
#include "base/detached_threads.h"
#include "tests/app/held_folder.h"
#include "tests/app/scan_end.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::eventually;
using test::HeldFolder;
using Pixels = std::vector<unsigned long>;

constexpr unsigned long kControl = 0xFFE3;
constexpr char kWelcomeTitle[] = "Heap Gauge · 1.1.1";

/// A user: a second client at the window. All that it looks at is what is on the screen.
class User {
 public:
  explicit User(const FrameLayout& frame)
      : frame_(frame), window_(client.shownWindow("Heapgauge")) {
    client.focus(window_);
  }

  void press(unsigned long keysym) {
    client.pressKey(keysym);
    client.releaseKey(keysym);
  }
  void pressWithControl(unsigned long keysym) {
    client.pressKey(kControl);
    press(keysym);
    client.releaseKey(kControl);
  }
  void click(int x, int y) {
    client.movePointer(x, y);
    client.pressButton(1);
    client.releaseButton(1);
  }
  void click(const ui::Rect& rect) { click(rect.x + rect.w / 2, rect.y + rect.h / 2); }
  void moveTo(const ui::Rect& rect) {
    client.movePointer(rect.x + rect.w / 2, rect.y + rect.h / 2);
  }
  void close() { client.sendProtocol(window_, "WM_DELETE_WINDOW"); }

  std::string title() { return client.textProperty(window_, "_NET_WM_NAME", "UTF8_STRING"); }
  bool comesToTitle(const std::string& text) {
    return eventually([&] { return title() == text; });
  }
  Pixels pixels(const ui::Rect& rect) {
    return client.screenPixels(window_, rect.x, rect.y, rect.w, rect.h);
  }
  unsigned long pixel(int x, int y) { return client.screenPixel(window_, x, y); }
  Pixels toolbar() { return pixels(frame_.toolbar); }
  Pixels status() { return pixels(frame_.status); }
  Pixels map() { return pixels(frame_.map); }
  /// Of files: the blocks of folders in which there is nothing yet are flat.
  bool seesAMap() {
    const int x = frame_.map.x + frame_.map.w / 2;
    const int y = frame_.map.y + frame_.map.h / 2;
    return isMapAt(x, y) && pixel(x, y) != pixel(x, y + frame_.map.h / 3);
  }
  bool isMapAt(int x, int y) {
    const unsigned long seen = pixel(x, y);
    return seen != 0 && seen != kMapBackground && seen != (ui::kLightPalette.view & 0xFFFFFF);
  }
  /// The whole scan is shown, in the list and the tables too: the map may be ahead of them before.
  bool comesToTheEnd() {
    return eventually([&] { return end_.seenIn(pixel(end_.x, end_.y)); });
  }
  bool comesToTheWholeMap() { return comesToTheEnd() && comesToMap(); }
  /// A scan is seen to run.
  bool comesToAScan() {
    return eventually([&] { return pixel(end_.x, end_.y) == end_.ground; });
  }
  bool comesToMap() {
    return eventually([&] { return seesAMap(); });
  }
  /// The picture may be a refresh ahead of the tables beside it.
  bool comesToBeFilled(const ui::Rect& rect) {
    return eventually([&] {
      const Pixels seen = pixels(rect);
      return std::ranges::adjacent_find(seen, std::not_equal_to()) != seen.end();
    });
  }
  void moveOntoStatus() { client.movePointer(frame_.status.x + 5, frame_.status.y + 5); }
  unsigned long window() const { return window_; }
  const FrameLayout& frame() const { return frame_; }

  test::OtherClient client;

 private:
  const FrameLayout frame_;
  const unsigned long window_;
  const test::ScanEnd end_ = test::ScanEnd::find();
};

class MainWindowInputTest : public testing::Test {
 protected:
  explicit MainWindowInputTest(const test::XServerOptions& options = {.height = 960})
      : server_(options),
        connection_(ui::Connection::open()),
        style_(*connection_, ui::kLightPalette),
        window_(std::make_unique<MainWindow>(*connection_)) {
    if (!window_->create()) throw std::runtime_error("no window");
    test::writeFile(folder_ + "/a/song.mp3", std::string(200'000, 'x'));
    test::writeFile(folder_ + "/a/note.txt", std::string(100'000, 'x'));
    test::writeFile(folder_ + "/held/late.jpg", std::string(50'000, 'x'));
  }

  // What a scan that was left reads is still there while it does.
  ~MainWindowInputTest() override {
    window_.reset();
    EXPECT_TRUE(
        base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
  }

  FrameLayout frame(int width = 1100, int height = 720) const {
    return layOutFrame({.width = connection_->scaled(width),
                        .height = connection_->scaled(height),
                        .scale = connection_->scale(),
                        .lineHeight = style_.lineHeight(),
                        .listAboveMap = false,
                        .showKinds = true,
                        .dividers = {}});
  }
  /// The first card of the welcome.
  ui::Rect firstCard() {
    ui::Icon icon;
    WelcomeScreen welcome(style_, icon);
    welcome.setRect({0, 0, 1100, 720});
    VolumeCards volumes([](const auto&) {});
    volumes.refresh();
    welcome.setCards(volumes.cards());
    return welcome.view().layout().cards.at(0).card;
  }

  ui::Rect firstKind() const {
    const ui::Rect& kinds = frame().kinds;
    return {kinds.x, kinds.y + style_.rowHeight(), kinds.w, style_.rowHeight()};
  }

  /// Runs the window until it ends while `act` does what a user does, on a thread of its own.
  void runWith(const std::function<void(User&)>& act) {
    const FrameLayout parts = frame();
    const std::jthread thread([&] {
      User user(parts);
      try {
        act(user);
      } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what();
      }
      user.close();
    });
    window_->run();
  }
  std::string titleOf(const std::string& folder) const { return folder + " — " + kWelcomeTitle; }

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const std::string folder_ = dir_ / "folder";
  const test::XServer server_;
  std::unique_ptr<ui::Connection> connection_;
  const ui::Style style_;
  std::unique_ptr<MainWindow> window_;
};

TEST_F(MainWindowInputTest, ScansTheVolumeOfAPressedCard) {
  const ui::Rect card = firstCard();
  HeldFolder held("proc");  // the scan of the whole machine need not end
  runWith([&](User& user) {
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    user.click(card);
    EXPECT_TRUE(user.comesToTitle(titleOf("/"))) << user.title();
    user.pressWithControl('o');
    EXPECT_TRUE(user.comesToTitle(kWelcomeTitle));
    held.release();
  });
}

TEST_F(MainWindowInputTest, ScansTheFolderAgain) {
  window_->scanPath(folder_);
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
    ASSERT_TRUE(user.comesToMap());
    const Pixels scanning = user.toolbar();
    const Pixels status = user.status();
    user.press(ui::key::kEscape);
    EXPECT_TRUE(eventually([&] { return user.toolbar() != scanning && user.status() != status; }));
    const Pixels stopped = user.status();
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    for (const unsigned long digit : {'2', '3', '4', '1'}) {
      const Pixels before = user.toolbar();
      user.pressWithControl(digit);
      EXPECT_TRUE(eventually([&] { return user.toolbar() != before; })) << digit;
    }
  });
}

TEST_F(MainWindowInputTest, GoesAlongTheFoldersThatWereInFocus) {
  window_->scanPath(folder_);
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
  const std::jthread thread([&] {
    User user(parts);
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
  runWith([&](User& user) {
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
