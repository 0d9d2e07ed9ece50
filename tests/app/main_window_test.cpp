// The main window in this process, on an X server of the test's own, with a second client beside
// it.

#include "app/main_window.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>

#include <chrono>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "app/map/cushion_shading.h"
#include "base/detached_threads.h"
#include "tests/app/held_folder.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/picture.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"
#include "ui/palette.h"

namespace app {
namespace {

using test::eventually;
using test::HeldFolder;
using test::OtherClient;

TEST(WindowTitle, NamesTheProgramAndTheShownPath) {
  EXPECT_EQ(windowTitle(""), "Heap Gauge · 1.1.1");
  EXPECT_EQ(windowTitle("/home/me"), "/home/me — Heap Gauge · 1.1.1");
}

TEST(WindowTitle, WritesBytesThatAreNoTextAsNumbers) {
  EXPECT_EQ(windowTitle("/a\xff"), "/a\\377 — Heap Gauge · 1.1.1");
}

TEST(ScanFailureText, GivesThePathAndTheReason) {
  EXPECT_EQ(scanFailureText("/no/where", "No such file or directory"),
            "/no/where - No such file or directory");
  EXPECT_EQ(scanFailureText("/a\xff", "Not a directory"), "/a\\377 - Not a directory");
}

TEST(CaptureFailedMessage, NamesTheFileAsItIs) {
  EXPECT_EQ(captureFailedMessage("/a b\xff.ppm"), "could not write /a b\xff.ppm\n");
}

/// The ground of lists and of the welcome view in the light colours.
constexpr unsigned long kViewColour = ui::kLightPalette.view & 0xFFFFFF;

// The modifier keys, by the numbers of X11/keysymdef.h.
constexpr ui::key::Keysym kShiftKey = 0xFFE1;
constexpr ui::key::Keysym kCtrlKey = 0xFFE3;

/// The map in a frame of a scan, in a window of the first size. What is around it tells how long
/// the scan took.
test::Picture mapOf(const std::string& frame) {
  return test::readPpm(frame).part(390, 50, 700, 630);
}

/// The user at the window: a second client and the id of the window.
struct User {
  OtherClient client;
  unsigned long window = 0;

  /// Whether the map shows something at the middle of the window.
  bool seesAMap() { return showsAMap(550, 360); }
  bool showsAMap(int x, int y) { return pixel(x, y) != 0 && pixel(x, y) != kMapBackground; }
  unsigned long pixel(int x, int y) { return client.screenPixel(window, x, y); }
  std::string title() { return client.textProperty(window, "_NET_WM_NAME", "UTF8_STRING"); }
  void close() { client.sendProtocol(window, "WM_DELETE_WINDOW"); }
};

class MainWindowTest : public testing::Test {
 protected:
  MainWindowTest() : connection_(ui::Connection::open()), window_(makeWindow()) {
    test::writeFile(partly_ + "/seen.mp3", std::string(100'000, 'x'));
    test::writeFile(partly_ + "/held/hidden.txt", std::string(100'000, 'x'));
    test::makeBushyTree(bushy_, 1, 30, 8);
  }

  // What a scan that was left reads is still there while it does.
  ~MainWindowTest() override {
    window_.reset();
    EXPECT_TRUE(
        base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
  }

  std::unique_ptr<MainWindow> makeWindow() {
    auto window = std::make_unique<MainWindow>(*connection_);
    if (!window->create()) throw std::runtime_error("no window");
    return window;
  }

  /// Runs the window until it ends while `act` does what a user does, on a thread of its own.
  void runWith(const std::function<void(User&)>& act) {
    const std::jthread thread([&] {
      User user;
      user.window = user.client.shownWindow("Heapgauge");
      try {
        act(user);
      } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what();
        user.close();
      }
    });
    window_->run();
  }

  /// While the scan of `partly_` is held at its root: waits for a frame without a map, lets the
  /// scan go on to the folder inside, and waits for what it found. Only a tick brings that onto the
  /// screen.
  static void seeThePart(User& user, HeldFolder& held) {
    EXPECT_TRUE(eventually([&] { return user.pixel(550, 360) == kMapBackground; }));
    held.holdInstead("held");
    EXPECT_TRUE(eventually([&] { return user.seesAMap(); }));
  }

  /// The frame that a new window leaves of `folder` when nothing holds up its scan.
  test::Picture wholePictureOf(const std::string& folder) {
    window_.reset();
    window_ = makeWindow();
    window_->scanPath(folder);
    window_->captureAfter(dir_ / "whole.ppm", 0);
    window_->run();
    return mapOf(dir_ / "whole.ppm");
  }

  bool scanWasRecorded(const std::string& folder) const {
    const std::string file = home_.path() + "/.local/share/heapgauge/scan-history.txt";
    return exists(file) && test::readFile(file).find("\t" + folder + "\n") != std::string::npos;
  }
  static bool exists(const std::string& path) { return std::filesystem::exists(path); }

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const std::string partly_ = dir_ / "partly";  // a scan sees one half of it until it is let go on
  const std::string bushy_ = dir_ / "bushy";
  const std::string frame_ = dir_ / "frame.ppm";
  /// 960 lines at 96 dpi are 254 mm to the line, so that the interface scale is exactly 1.
  const test::XServer server_{{.height = 960}};
  std::unique_ptr<ui::Connection> connection_;
  std::unique_ptr<MainWindow> window_;
};

TEST_F(MainWindowTest, ShowsTheWelcomeViewBeforeAnyScan) {
  runWith([](User& user) {
    EXPECT_TRUE(eventually([&] { return user.pixel(1099, 719) == kViewColour; }));
    user.close();
  });
}

TEST_F(MainWindowTest, ShowsWhatARunningScanHasFoundSoFar) {
  HeldFolder held("partly");
  window_->scanPath(partly_);
  runWith([&](User& user) {
    seeThePart(user, held);
    EXPECT_FALSE(scanWasRecorded(partly_)) << "the scan had ended before the map was seen";
    held.release();
    user.close();
  });
}

TEST_F(MainWindowTest, ShowsTheWholeFolderOnceTheScanHasEnded) {
  HeldFolder held("partly");
  window_->scanPath(partly_);
  runWith([&](User& user) {
    seeThePart(user, held);
    const unsigned long before = user.pixel(1000, 600);
    held.release();
    EXPECT_TRUE(eventually([&] { return user.pixel(1000, 600) != before; }));
    user.close();
  });
}

TEST_F(MainWindowTest, CapturesOnlyAfterTheScan) {
  {
    HeldFolder held("partly");
    window_->scanPath(partly_);
    window_->captureAfter(frame_, 0);
    runWith([&](User& user) {
      seeThePart(user, held);  // by a tick, which asks for the capture as well
      EXPECT_FALSE(exists(frame_));
      held.release();
    });
  }
  EXPECT_TRUE(mapOf(frame_) == wholePictureOf(partly_));
}

TEST_F(MainWindowTest, ScansAnotherFolderInsteadOfTheOneItIsScanning) {
  window_->scanPath(bushy_);
  window_->scanPath(partly_);
  window_->captureAfter(frame_, 0);
  window_->run();
  EXPECT_TRUE(mapOf(frame_) == wholePictureOf(partly_));
}

TEST_F(MainWindowTest, IsNotMisledByTheEndOfTheScanBefore) {
  window_->scanPath(bushy_);
  ASSERT_TRUE(eventually([&] { return scanWasRecorded(bushy_); }));
  {
    HeldFolder held("partly");
    window_->scanPath(partly_);
    window_->captureAfter(frame_, 0);
    runWith([&](User& user) {
      seeThePart(user, held);
      EXPECT_FALSE(exists(frame_));
      held.release();
    });
  }
  EXPECT_TRUE(mapOf(frame_) == wholePictureOf(partly_));
}

TEST_F(MainWindowTest, FollowsAScanAfterOneWhoseEndItHasShown) {
  window_->scanPath(bushy_);
  window_->captureAfter(dir_ / "bushy.ppm", 0);
  window_->run();
  {
    HeldFolder held("partly");
    window_->scanPath(partly_);
    window_->captureAfter(frame_, 0);
    runWith([&](User& user) {
      seeThePart(user, held);
      EXPECT_FALSE(exists(frame_));
      held.release();
    });
  }
  EXPECT_TRUE(mapOf(frame_) == wholePictureOf(partly_));
}

TEST_F(MainWindowTest, NamesTheShownScanInItsTitle) {
  window_->scanPath(bushy_);
  runWith([&](User& user) {
    EXPECT_TRUE(eventually([&] { return user.title() == bushy_ + " — Heap Gauge · 1.1.1"; }))
        << user.title();
    user.close();
  });
}

TEST_F(MainWindowTest, FillsItsNewSizeWithTheMap) {
  window_->scanPath(bushy_);
  runWith([&](User& user) {
    EXPECT_TRUE(eventually([&] { return user.seesAMap(); }));
    user.client.resizeWindow(user.window, 1270, 900);
    EXPECT_TRUE(eventually([&] { return user.showsAMap(1262, 450) && user.showsAMap(600, 862); }));
    user.close();
  });
}

TEST_F(MainWindowTest, ClosesInTheMiddleOfAScan) {
  HeldFolder held("held");
  window_->scanPath(partly_);
  runWith([&](User& user) {
    ASSERT_TRUE(held.waitUntilReached());
    user.close();
  });
  EXPECT_FALSE(scanWasRecorded(partly_)) << "the scan had ended before the window closed";
  window_.reset();
  EXPECT_EQ(held.held(), 1) << "the scan's threads had ended before the window was gone";
}

TEST_F(MainWindowTest, ShowsAnotherFolderWhileTheScanBeforeHangs) {
  HeldFolder held("held");
  window_->scanPath(partly_);
  ASSERT_TRUE(held.waitUntilReached());
  window_->scanPath(bushy_);
  window_->captureAfter(frame_, 0);
  window_->run();
  EXPECT_EQ(held.held(), 1);
  EXPECT_TRUE(scanWasRecorded(bushy_));
  held.release();
  EXPECT_TRUE(mapOf(frame_) == wholePictureOf(bushy_));
}

TEST_F(MainWindowTest, GoesBackToTheWelcomeViewWhileTheScanHangs) {
  HeldFolder held("held");
  window_->scanPath(partly_);
  ASSERT_TRUE(held.waitUntilReached());
  window_->showWelcome();
  runWith([&](User& user) {
    EXPECT_TRUE(eventually([&] { return user.pixel(1099, 719) == kViewColour; }));
    EXPECT_EQ(user.title(), "Heap Gauge · 1.1.1");
    user.close();
  });
  EXPECT_EQ(held.held(), 1);
}

TEST_F(MainWindowTest, NamesTheFolderToWhichAPathLeadsThatGoesUp) {
  ASSERT_EQ(symlink("partly/held", (dir_ / "link").c_str()), 0);
  window_->scanPath(dir_ / "link/..");
  runWith([&](User& user) {
    EXPECT_TRUE(eventually([&] { return user.title() == partly_ + " — Heap Gauge · 1.1.1"; }))
        << user.title();
    user.close();
  });
  EXPECT_TRUE(eventually([&] { return scanWasRecorded(partly_); }));
}

TEST_F(MainWindowTest, ShowsAMessageOverTheWelcomeViewWhenAFolderCannotBeScanned) {
  window_->scanPath(dir_ / "missing");
  runWith([&](User& user) {
    constexpr unsigned long kPanel = ui::kLightPalette.window & 0xFFFFFF;
    EXPECT_TRUE(eventually([&] { return user.pixel(345, 360) == kPanel; }));
    EXPECT_EQ(user.title(), "Heap Gauge · 1.1.1");
    user.client.focus(user.window);
    user.client.pressKey(ui::key::kEscape);
    user.client.releaseKey(ui::key::kEscape);
    EXPECT_TRUE(eventually([&] { return user.pixel(345, 360) == kViewColour; }));
    user.close();
  });
}

TEST_F(MainWindowTest, ScansTheFolderThatIsChosenFromTheWelcomeView) {
  test::makeDirectory(home_.path() + "/chosen");
  runWith([&](User& user) {
    constexpr unsigned long kPanel = ui::kLightPalette.window & 0xFFFFFF;
    const auto press = [&](ui::key::Keysym key) {
      user.client.pressKey(key);
      user.client.releaseKey(key);
    };
    EXPECT_TRUE(eventually([&] { return user.pixel(195, 360) == kViewColour; }));
    user.client.focus(user.window);
    user.client.pressKey(kShiftKey);
    press(ui::key::kTab);  // backwards, to the last of the controls
    user.client.releaseKey(kShiftKey);
    press(ui::key::kReturn);
    EXPECT_TRUE(eventually([&] { return user.pixel(195, 360) == kPanel; }));
    // The folders are read beside the window: there is no row to go to before they are there.
    const auto accented = [&] {
      const auto pixels = user.client.screenPixels(user.window, 195, 100, 700, 500);
      return std::ranges::count(pixels, ui::kLightPalette.accent & 0xFFFFFF);
    };
    const auto before = accented();
    constexpr int kRow = 2000;  // pixels, at least
    EXPECT_TRUE(eventually([&] {
      press(ui::key::kDown);
      return accented() > before + kRow;
    }));
    user.client.pressKey(kCtrlKey);
    press(ui::key::kReturn);
    user.client.releaseKey(kCtrlKey);
    EXPECT_TRUE(eventually([&] {
      return user.title() == home_.path() + "/chosen — Heap Gauge · 1.1.1";
    })) << user.title();
    EXPECT_TRUE(eventually([&] { return user.pixel(195, 360) != kPanel; }));
    user.close();
  });
}

}  // namespace
}  // namespace app
