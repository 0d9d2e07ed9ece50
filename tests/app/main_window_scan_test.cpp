// The main window while scans begin, go on, end and are made again, under real keys.

#include <chrono>
#include <memory>
#include <string>

#include "app/model/settings_store.h"
#include "tests/app/main_window_fixture.h"
#include "tests/app/own_volumes.h"
#include "tests/app/slow_drawing.h"

namespace app {
namespace {

class MainWindowScanTest : public MainWindowInputTest {
 protected:
  /// In a menu that a key opened at an item.
  static void chooseRescanFolder(WindowUser& user) {
    for (int i = 0; i < 3; ++i) user.press(ui::key::kDown);
    user.press(ui::key::kReturn);
  }
  /// What was posted to the window before has been run: it has answered the pointer since.
  void comeRound(WindowUser& user) const {
    for (int i = 0; i < 2; ++i) {
      const Pixels before = user.toolbar();
      user.client.movePointer(20, frame().toolbar.h / 2);
      ASSERT_TRUE(eventually([&] { return user.toolbar() != before; }));
      const Pixels hovered = user.toolbar();
      user.moveOntoStatus();
      ASSERT_TRUE(eventually([&] { return user.toolbar() != hovered; }));
    }
  }
  std::string clipboard(WindowUser& user) const {
    EXPECT_TRUE(
        eventually([&] { return user.client.selectionOwner("CLIPBOARD") == user.window(); }));
    user.client.requestSelection("CLIPBOARD", "UTF8_STRING");
    EXPECT_TRUE(eventually([&] { return user.client.answer().has_value(); }));
    return user.client.textProperty(user.client.requestor(), "ANSWER", "UTF8_STRING");
  }
};

TEST_F(MainWindowScanTest, KeepsAMenuAndWhatItIsAboutWhenTheScanEnds) {
  HeldFolder held("held");
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToMap());
    ASSERT_TRUE(user.comesToBeFilled(firstKind())) << "and the list with it";
    user.press(ui::key::kDown);
    user.press(ui::key::kMenu);
    held.release();
    ASSERT_TRUE(user.comesToTheEnd());
    user.press(ui::key::kReturn);  // Copy Path
    EXPECT_EQ(clipboard(user), folder_ + "/a");
  });
}

TEST_F(MainWindowScanTest, ComesBackToTheFolderInFocusWhenItScansAgain) {
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    const Pixels atRoot = user.toolbar();
    user.press(ui::key::kDown);
    user.press(ui::key::kReturn);
    ASSERT_TRUE(eventually([&] { return user.toolbar() != atRoot; }));
    const Pixels inside = user.toolbar();
    HeldFolder held("a");
    user.press(ui::key::kF5);
    ASSERT_TRUE(held.waitUntilReached());
    ASSERT_TRUE(user.comesToAScan());
    user.press(ui::key::kF5);  // before it has found anything there
    ASSERT_TRUE(held.waitUntilHeld(2));
    held.release();
    ASSERT_TRUE(user.comesToTheEnd());
    EXPECT_TRUE(eventually([&] { return user.toolbar() == inside; }));
  });
}

TEST_F(MainWindowScanTest, ComesBackToTheOpenRowsOfAFolderThatIsReadAgain) {
  test::writeFile(folder_ + "/a/inner/large.zip", std::string(400'000, 'x'));
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToTheWholeMap());
    const Pixels closed = user.pixels(user.frame().list);
    user.press(ui::key::kDown);
    user.press(ui::key::kRight);
    user.press(ui::key::kDown);  // inner
    user.press(ui::key::kRight);
    user.press(ui::key::kUp);
    ASSERT_TRUE(eventually([&] { return user.pixels(user.frame().list) != closed; }));
    comeRound(user);
    const Pixels open = user.pixels(user.frame().list);
    HeldFolder held("a");
    user.press(ui::key::kMenu);
    chooseRescanFolder(user);
    ASSERT_TRUE(held.waitUntilReached());
    ASSERT_TRUE(user.comesToAScan());
    held.release();
    ASSERT_TRUE(user.comesToTheEnd());
    EXPECT_TRUE(eventually([&] { return user.pixels(user.frame().list) == open; }));
  });
}

TEST_F(MainWindowScanTest, ReadsAFolderAgainOnceAScanThatWasStoppedHasEnded) {
  HeldFolder held("held");
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    ASSERT_TRUE(user.comesToMap());
    ASSERT_TRUE(user.comesToBeFilled(firstKind()));
    user.moveOntoStatus();
    user.press(ui::key::kEscape);
    ASSERT_TRUE(user.comesToTheEnd());
    held.holdInstead("a");
    ASSERT_TRUE(
        base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
    comeRound(user);
    user.press(ui::key::kDown);
    user.press(ui::key::kMenu);
    chooseRescanFolder(user);
    EXPECT_TRUE(held.waitUntilReached());
    held.release();
  });
}

/// A scan of folders inside each other that goes on level by level while a user looks. Nothing but
/// looks at the tree change the table of kinds: the list reads sizes as it paints.
class LevelByLevel {
 public:
  using Clock = std::chrono::steady_clock;

  /// The levels are made in `folder`, below its `a`.
  LevelByLevel(const std::string& folder, int levels) {
    std::string inside = folder + "/a";
    for (int level = 0; level < levels; ++level) {
      inside += "/" + nameOf(level);
      test::writeFile(inside + "/large.zip", std::string(400'000, 'x'));
    }
  }

  /// Waits until the table shows what is found at the next level.
  bool goOn(WindowUser& user) {
    const Pixels before = user.pixels(user.frame().kinds);
    held_.holdInstead(nameOf(++level_));
    return eventually([&] {
      const Clock::time_point now = Clock::now();
      longestGap_ = std::max(longestGap_, now - lastLook_);
      lastLook_ = now;
      return user.pixels(user.frame().kinds) != before;
    });
  }
  void release() { held_.release(); }

  void beginGapsAt(Clock::time_point time) {
    lastLook_ = time;
    longestGap_ = {};
  }
  /// The longest time between two looks since then: a machine that stood still for so long cannot
  /// be told from a window that pauses.
  Clock::duration longestGap() const { return longestGap_; }

 private:
  static std::string nameOf(int level) { return "level" + std::to_string(level); }

  HeldFolder held_{"a"};
  int level_ = -1;
  Clock::time_point lastLook_;
  Clock::duration longestGap_{};
};

TEST_F(MainWindowScanTest, PausesAfterAPictureThatTookLong) {
  constexpr std::chrono::milliseconds kSlow(500);
  constexpr int kTries = 5;
  LevelByLevel scan(folder_, 2 * kTries);
  window_->scanPath(folder_);
  const ui::Rect firstRow = firstKind();
  runWith([&](WindowUser& user) {
    user.moveOntoStatus();
    ASSERT_TRUE(user.comesToBeFilled(firstRow));
    for (int i = 0; i < kTries; ++i) {
      const test::SlowDrawing slow(kSlow);
      ASSERT_TRUE(scan.goOn(user));
      ASSERT_TRUE(eventually([&] { return slow.sent().has_value(); }));
      scan.beginGapsAt(*slow.sent());
      ASSERT_TRUE(scan.goOn(user));
      EXPECT_GE(LevelByLevel::Clock::now() - *slow.sent(), 2 * kSlow);
      if (scan.longestGap() < kSlow) break;
    }
    scan.release();
  });
}

TEST_F(MainWindowScanTest, ShowsTheFreeSpaceOfTheDiskThatIsScannedAndOfNoOther) {
  constexpr std::uint64_t kMega = 1'000'000;
  test::OwnVolumes volumes;
  SettingsStore::instance().setBool(setting::kShowFreeSpace.key, true);
  window_.reset();
  window_ = std::make_unique<MainWindow>(*connection_);
  ASSERT_TRUE(window_->create());
  ASSERT_TRUE(volumes.waitUntilHeld()) << "a disk of the welcome view";
  window_->scanPath(folder_);
  runWith([&](WindowUser& user) {
    user.moveOntoStatus();
    ASSERT_TRUE(user.comesToTheWholeMap());
    comeRound(user);
    const Pixels without = user.map();
    volumes.answerFor(folder_, kMega / 2, kMega);
    ASSERT_TRUE(eventually([&] { return user.map() != without; }));
    comeRound(user);
    const Pixels before = user.map();
    volumes.answerForOthers(1000 * kMega, kMega);
    ASSERT_TRUE(eventually([&] { return volumes.answered() > 0; }));
    ASSERT_TRUE(
        base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
    comeRound(user);
    EXPECT_TRUE(user.map() == before);
  });
  SettingsStore::instance().setBool(setting::kShowFreeSpace.key, false);
}

}  // namespace
}  // namespace app
