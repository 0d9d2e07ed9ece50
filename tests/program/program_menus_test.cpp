// The built program's menus and settings, from the keyboard and the pointer to what is seen.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/program/program_run.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

using test::eventually;
using test::kDimmed;
using test::kGround;
using Colours = std::vector<unsigned long>;

/// Where the toolbar has its buttons in a window of the first size.
struct Place {
  int x;
  int y;
};
constexpr Place kMenuButton = {1082, 18};
constexpr Place kMeasureButton = {220, 18};
/// In the open application menu, beside its texts.
constexpr Place kInMenu = {1088, 100};
/// Where nothing is drawn on the ground of the welcome view, and on that of a short list.
constexpr Place kInWelcome = {5, 700};
constexpr Place kInList = {250, 400};

class ProgramMenus : public testing::Test {
 protected:
  static bool opens(test::Running& program, Place place = kInWelcome) {
    return eventually([&] { return program.pixel(place.x, place.y) == kDimmed; });
  }
  static bool closes(test::Running& program, Place place = kInWelcome) {
    return eventually([&] { return program.pixel(place.x, place.y) == kGround; });
  }
  /// Colours all over the window apart from where a dialog's panel and the status line are.
  static Colours around(test::Running& program) {
    Colours colours;
    for (int y = 60; y < 680; y += 9) {
      for (const int x : {12, 40, 100, 200, 260, 830, 900, 1000, 1090}) {
        colours.push_back(program.pixel(x, y));
      }
    }
    return colours;
  }
  /// Of the toolbar from the measure selector on, once all that was done before is seen: a dialog
  /// is opened over it for as long.
  static Colours settledToolbar(test::Running& program) {
    program.client().movePointer(kInList.x, kInList.y);
    program.ctrlKey(',');
    EXPECT_TRUE(opens(program, kInList));
    Colours colours;
    for (int x = 200; x < 450; x += 3) {
      for (const int y : {12, 16, 20}) colours.push_back(program.pixel(x, y));
    }
    program.key(ui::key::kEscape);
    EXPECT_TRUE(closes(program, kInList));
    return colours;
  }
  /// Opens the measure selector and presses two keys.
  static void chooseMeasure(test::Running& program, unsigned long first, unsigned long second) {
    program.click(kMeasureButton.x, kMeasureButton.y);
    program.key(first);
    program.key(second);
  }

  std::string settings() const {
    const std::string file = home_.path() + "/.config/heapgauge/settings.ini";
    return std::filesystem::exists(file) ? test::readFile(file) : std::string();
  }
  /// Until the scan has ended and its files are on the map: the blocks of folders in which there is
  /// nothing yet are flat.
  static bool waitForTheScan(test::Running& program) {
    return program.comesToTheEndOfItsScan() &&
           eventually([&] { return program.pixel(500, 60) != program.pixel(700, 400); });
  }
  /// A folder whose parts are of different kinds, and sparse the larger they are.
  std::string folder() const {
    test::writeSparseFile(dir_ / "scanned/long.mp3", 1'000'000'000);
    test::writeFile(dir_ / "scanned/heavy.txt", std::string(3'000'000, 'x'));
    test::writeFile(dir_ / "scanned/light.zip", std::string(1'000'000, 'x'));
    return dir_ / "scanned";
  }

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const test::XServer server_{{.height = 960}};
};

TEST_F(ProgramMenus, ShowEveryFlippedSettingAtOnceBehindTheDialog) {
  test::Running program({folder()});
  ASSERT_TRUE(waitForTheScan(program));
  program.ctrlKey(',');
  ASSERT_TRUE(opens(program, kInList));
  constexpr int kRowsWithAView = 6;
  for (int row = 0; row < kRowsWithAView; ++row) {
    const Colours before = around(program);
    program.key(' ');
    EXPECT_TRUE(eventually([&] { return around(program) != before; })) << row;
    program.key(' ');
    EXPECT_TRUE(eventually([&] { return around(program) == before; })) << row;
    program.key(ui::key::kDown);
  }
}

TEST_F(ProgramMenus, StoreAFlippedSettingAtOnce) {
  test::Running program;
  program.ctrlKey(',');
  ASSERT_TRUE(opens(program));
  program.key(ui::key::kDown);
  program.key(' ');
  EXPECT_TRUE(eventually([&] { return settings() == "[Heapgauge]\nSplitHorizontally=true\n"; }));
  program.key(' ');
  EXPECT_TRUE(eventually([&] { return settings() == "[Heapgauge]\nSplitHorizontally=false\n"; }));
}

TEST_F(ProgramMenus, CloseTheSettingsWithEscapeEnterAndAPressOutside) {
  test::Running program;
  for (const unsigned long keysym : {ui::key::kEscape, ui::key::kReturn}) {
    program.ctrlKey(',');
    EXPECT_TRUE(opens(program));
    program.key(keysym);
    EXPECT_TRUE(closes(program));
  }
  program.ctrlKey(',');
  EXPECT_TRUE(opens(program));
  program.click(5, 700);
  EXPECT_TRUE(closes(program));
  EXPECT_EQ(settings(), "");
}

TEST_F(ProgramMenus, KeepKeysFromTheScanBelow) {
  test::Running program({folder()});
  ASSERT_TRUE(waitForTheScan(program));
  const Colours before = settledToolbar(program);
  const Colours scanned = around(program);
  // A scan from here on shows another map.
  test::writeFile(dir_ / "scanned/late.zip", std::string(3'000'000, 'x'));
  program.ctrlKey(',');
  ASSERT_TRUE(opens(program, kInList));
  program.ctrlKey('2');
  program.key(ui::key::kF5);
  program.key(ui::key::kEscape);
  ASSERT_TRUE(closes(program, kInList));
  EXPECT_TRUE(settledToolbar(program) == before);
  ASSERT_TRUE(program.comesToTheEndOfItsScan());
  EXPECT_TRUE(around(program) == scanned);
  program.key(ui::key::kF5);
  EXPECT_TRUE(eventually([&] { return around(program) != scanned; })) << "now it is the scan's";
}

TEST_F(ProgramMenus, KeepQuickSecondPressesFromTheScanBelow) {
  // A double press anywhere on its map would go into the folder.
  test::writeFile(dir_ / "scanned/inner/file.mp3", std::string(1'000'000, 'x'));
  test::Running program({dir_ / "scanned"});
  ASSERT_TRUE(waitForTheScan(program));
  const Colours before = settledToolbar(program);
  program.ctrlKey(',');
  ASSERT_TRUE(opens(program, kInList));
  // Outside the panel, over the map: the first press closes the dialog, the second is nobody's.
  program.click(1050, 650);
  program.click(1050, 650);
  ASSERT_TRUE(closes(program, kInList));
  EXPECT_TRUE(settledToolbar(program) == before);
}

TEST_F(ProgramMenus, OpenTheSettingsFromTheApplicationMenuByKeys) {
  test::Running program;
  program.key(ui::key::kF10);
  program.key(ui::key::kReturn);  // the first entry that is enabled
  EXPECT_TRUE(opens(program));
}

TEST_F(ProgramMenus, OpenTheApplicationMenuFromItsButton) {
  test::Running program({folder()});
  ASSERT_TRUE(waitForTheScan(program));
  const auto inMenu = [&] { return program.pixel(kInMenu.x, kInMenu.y); };
  ASSERT_TRUE(eventually([&] { return inMenu() != kGround; }));
  program.click(kMenuButton.x, kMenuButton.y);
  EXPECT_TRUE(eventually([&] { return inMenu() == kGround; }));
  program.click(kMenuButton.x, kMenuButton.y);  // outside: the menu is not opened again
  EXPECT_TRUE(eventually([&] { return inMenu() != kGround; }));
  program.key(ui::key::kF10);
  EXPECT_TRUE(eventually([&] { return inMenu() == kGround; }));
  program.key(ui::key::kEscape);
  EXPECT_TRUE(eventually([&] { return inMenu() != kGround; }));
}

TEST_F(ProgramMenus, LeaveTheScanForAnotherFolderFromTheApplicationMenu) {
  test::Running program({folder()});
  ASSERT_TRUE(waitForTheScan(program));
  program.key(ui::key::kF10);
  program.key(ui::key::kReturn);
  EXPECT_TRUE(eventually([&] { return program.title() == "Heap Gauge · 1.1.1"; }));
}

TEST_F(ProgramMenus, ChangeTheMeasure) {
  test::Running program({folder()});
  ASSERT_TRUE(waitForTheScan(program));
  const Colours before = settledToolbar(program);
  chooseMeasure(program, ui::key::kEnd, ui::key::kReturn);
  EXPECT_TRUE(settledToolbar(program) != before);
  chooseMeasure(program, ui::key::kHome, ui::key::kEscape);
  EXPECT_TRUE(settledToolbar(program) != before);
  chooseMeasure(program, ui::key::kHome, ui::key::kReturn);
  EXPECT_TRUE(settledToolbar(program) == before);
}

}  // namespace
