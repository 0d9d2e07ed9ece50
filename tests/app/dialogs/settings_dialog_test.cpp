// The settings dialog in a window.

#include "app/dialogs/settings_dialog.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/temp_directory.h"
#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using test::rgb;

// Rows by number, as they are shown.
constexpr std::size_t kOnDisk = 0;
constexpr std::size_t kListAbove = 1;
constexpr std::size_t kFreeSpace = 3;
constexpr std::size_t kKinds = 5;
constexpr std::size_t kUpdates = 6;
constexpr std::size_t kResetAll = 0;
constexpr std::size_t kDone = 1;

class SettingsDialogOn : protected test::ViewsOnWindow {
 protected:
  SettingsDialogOn(const ui::Palette& palette, double scale, int windowWidth, int windowHeight)
      : ViewsOnWindow(palette, scale), width(windowWidth), height(windowHeight) {
    dialog.onSettingsChanged = [this] { ++changes; };
    dialog.onClosed = [this] { ++closings; };
    dialog.setRect({0, 0, width, height});
  }

  std::string file() const { return configuration.path() + "/heapgauge/settings.ini"; }
  std::string stored() const {
    awaitSaved();
    return test::readFile(file());
  }
  bool nothingIsStored() const {
    awaitSaved();
    return !std::filesystem::exists(file());
  }
  void awaitSaved() const {
    EXPECT_TRUE(store.awaitSaved(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
  }
  bool isOn(std::size_t row) const { return dialog.rows()[row].get(); }
  void click(const ui::Rect& rect) {
    dialog.press(at(rect));
    dialog.release(at(rect));
  }
  void click(std::size_t row) { click(dialog.rowRect(row)); }
  void key(unsigned long keysym, bool shift = false) {
    dialog.key({.keysym = keysym, .text = {}, .shift = shift});
  }
  test::Picture picture() {
    return ViewsOnWindow::picture(width, height, [&](ui::Canvas& c) { dialog.paint(c); });
  }
  bool isInView(std::size_t row) const {
    const ui::Rect rect = dialog.rowRect(row);
    return ui::intersect(rect, dialog.listRect()) == rect;
  }

  const int width;
  const int height;
  test::TempDirectory configuration;
  SettingsStore store{configuration.path()};
  SettingsDialog dialog{*connection, style, store};
  int changes = 0;
  int closings = 0;
};

class SettingsDialogTest : public testing::Test, protected SettingsDialogOn {
 protected:
  SettingsDialogTest() : SettingsDialogOn(ui::kLightPalette, 1, 1100, 720) {}
};

/// The least window.
class LowSettingsDialogTest : public testing::Test, protected SettingsDialogOn {
 protected:
  LowSettingsDialogTest() : SettingsDialogOn(ui::kDarkPalette, 1, 640, 420) {}
};

TEST_F(SettingsDialogTest, FlipsTheSettingOfARowThatIsPressed) {
  click(kListAbove);
  EXPECT_TRUE(isOn(kListAbove));
  EXPECT_EQ(stored(), "[Heapgauge]\nSplitHorizontally=true\n");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(closings, 0);
}

TEST_F(SettingsDialogTest, FlipsBackWithASecondPress) {
  store.setBool("ShowFreeSpace", false);
  const std::string before = stored();
  click(kFreeSpace);
  EXPECT_NE(stored(), before);
  click(kFreeSpace);
  EXPECT_FALSE(isOn(kFreeSpace));
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(changes, 2);
}

TEST_F(SettingsDialogTest, LeavesASettingWhenThePressIsLetGoElsewhere) {
  dialog.press(at(dialog.rowRect(kListAbove)));
  dialog.release(at(dialog.rowRect(kFreeSpace)));
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(nothingIsStored());
}

TEST_F(SettingsDialogTest, ResetsAll) {
  click(kOnDisk);
  click(kKinds);
  click(dialog.buttonRect(kResetAll));
  EXPECT_TRUE(isOn(kOnDisk));
  EXPECT_TRUE(isOn(kKinds));
  EXPECT_EQ(changes, 3);
  EXPECT_EQ(stored(), "[Heapgauge]\nShowFileKinds=true\nShowPhysicalFileSize=true\n");
  EXPECT_EQ(closings, 0);
}

TEST_F(SettingsDialogTest, LooksTheSameAfterAResetOfDefaults) {
  const test::Picture before = picture();
  key(ui::key::kEnd);
  key(ui::key::kDown);
  key(' ');
  key(ui::key::kHome);
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(picture() == before);
}

TEST_F(SettingsDialogTest, IsClosedByDone) {
  click(dialog.buttonRect(kDone));
  EXPECT_EQ(closings, 1);
}

TEST_F(SettingsDialogTest, IsClosedByEscape) {
  key(ui::key::kEscape);
  EXPECT_EQ(closings, 1);
}

TEST_F(SettingsDialogTest, IsClosedByAPressOutsideButNotInside) {
  dialog.press({.x = dialog.panel().x + 2, .y = dialog.panel().y + 20, .button = 1});
  EXPECT_EQ(closings, 0);
  dialog.press({.x = dialog.panel().x - 1, .y = 300, .button = 1});
  EXPECT_EQ(closings, 1);
}

TEST_F(SettingsDialogTest, IsClosedByEnterOnARow) {
  key(ui::key::kReturn);
  EXPECT_EQ(closings, 1);
  EXPECT_EQ(changes, 0);
}

TEST_F(SettingsDialogTest, FlipsTheRowThatHasTheKeyboardWithSpace) {
  key(ui::key::kDown);
  key(' ');
  EXPECT_TRUE(isOn(kListAbove));
  EXPECT_TRUE(isOn(kOnDisk));
  EXPECT_EQ(changes, 1);
}

TEST_F(SettingsDialogTest, WalksRowsAndButtonsWithUpAndDown) {
  key(ui::key::kUp);
  EXPECT_EQ(dialog.focusedControl(), 0);
  for (int i = 0; i < 20; ++i) key(ui::key::kDown);
  EXPECT_EQ(dialog.focusedControl(), 8);
  key(ui::key::kUp);
  key(ui::key::kUp);
  EXPECT_EQ(dialog.focusedControl(), static_cast<int>(kUpdates));
  key(ui::key::kHome);
  EXPECT_EQ(dialog.focusedControl(), 0);
  key(ui::key::kEnd);
  EXPECT_EQ(dialog.focusedControl(), static_cast<int>(kUpdates));
}

TEST_F(SettingsDialogTest, GivesTheKeyboardToARowThatIsPressed) {
  click(kFreeSpace);
  EXPECT_EQ(dialog.focusedControl(), static_cast<int>(kFreeSpace));
}

TEST_F(SettingsDialogTest, ShowsARingAroundTheRowThatHasTheKeyboard) {
  const auto leftEdge = [this](std::size_t row) {
    const ui::Rect rect = dialog.rowRect(row);
    return picture().at(rect.x, rect.y + rect.h / 2);
  };
  EXPECT_EQ(leftEdge(kOnDisk), rgb(style.palette().accent));
  EXPECT_EQ(leftEdge(kListAbove), rgb(style.palette().window));
  key(ui::key::kDown);
  EXPECT_EQ(leftEdge(kOnDisk), rgb(style.palette().window));
  EXPECT_EQ(leftEdge(kListAbove), rgb(style.palette().accent));
}

TEST_F(SettingsDialogTest, HighlightsTheRowUnderThePointer) {
  const ui::Rect rect = dialog.rowRect(kListAbove);
  dialog.motion(at(rect, 0));
  EXPECT_EQ(picture().at(rect.x, rect.y + rect.h / 2), rgb(style.palette().raised));
  EXPECT_EQ(picture().at(rect.x, rect.y), rgb(style.palette().window)) << "square corner";
  dialog.leave();
  EXPECT_EQ(picture().at(rect.x, rect.y + rect.h / 2), rgb(style.palette().window));
}

TEST_F(SettingsDialogTest, DrawsARoundKnobAtTheEndThatTheSwitchStandsFor) {
  const ui::Rect off = dialog.switchRect(kListAbove);
  const ui::Rect on = dialog.switchRect(kOnDisk);
  const auto colours = [this](const ui::Rect& rect) {
    const int mid = rect.y + rect.h / 2;
    const test::Picture frame = picture();
    return std::pair(frame.at(rect.x + rect.h / 2, mid),
                     frame.at(rect.x + rect.w - rect.h / 2, mid));
  };
  EXPECT_EQ(colours(off), std::pair(0xFFFFFFu, rgb(style.palette().border)));
  EXPECT_EQ(colours(on), std::pair(rgb(style.palette().link), 0xFFFFFFu));
  EXPECT_EQ(picture().at(off.x, off.y), rgb(style.palette().window)) << "not rounded";
  EXPECT_EQ(picture().at(off.x + 2, off.y + 2), rgb(style.palette().window)) << "not rounded";
  EXPECT_NE(picture().at(off.x + 3, off.y + 3), 0xFFFFFFu) << "square knob";
}

TEST_F(SettingsDialogTest, OutlinesSwitchesThatAreOff) {
  const auto edge = [this](std::size_t row) {
    const ui::Rect rect = dialog.switchRect(row);
    return picture().at(rect.x + rect.w / 2, rect.y);
  };
  EXPECT_EQ(edge(kListAbove), rgb(ui::controlOutline(style.palette())));
  EXPECT_EQ(edge(kOnDisk), rgb(style.palette().link));
}

TEST_F(SettingsDialogTest, GivesTheRowWithoutAnExplanationOneLine) {
  EXPECT_LT(dialog.rowRect(kKinds).h, dialog.rowRect(kListAbove).h);
  EXPECT_LT(dialog.rowRect(kKinds).h, 2 * style.lineHeight() + 8);
  EXPECT_GT(dialog.rowRect(kListAbove).h, dialog.rowRect(kKinds).h);
  EXPECT_GT(dialog.rowRect(kOnDisk).h, dialog.rowRect(kListAbove).h) << "not wrapped";
}

TEST_F(SettingsDialogTest, DimsTheWindowAround) {
  // 40 % of black over magenta.
  EXPECT_EQ(picture().at(5, 5), 0x990099u);
}

TEST_F(SettingsDialogTest, HoldsAllRowsAndScrollsNothingWhereThereIsRoom) {
  for (std::size_t row = 0; row < dialog.rows().size(); ++row) EXPECT_TRUE(isInView(row)) << row;
  const ui::Rect before = dialog.rowRect(kOnDisk);
  dialog.wheel(at(before, 0), 5);
  EXPECT_EQ(dialog.rowRect(kOnDisk), before);
}

TEST_F(LowSettingsDialogTest, StaysInsideTheWindow) {
  const ui::Rect& panel = dialog.panel();
  EXPECT_EQ(ui::intersect(panel, {0, 0, width, height}), panel);
  const ui::Rect& list = dialog.listRect();
  EXPECT_EQ(ui::intersect(list, panel), list);
  EXPECT_LE(list.y + list.h, dialog.buttonRect(kDone).y);
}

TEST_F(LowSettingsDialogTest, ScrollsToTheRowThatTheKeyboardGoesTo) {
  EXPECT_FALSE(isInView(kUpdates));
  for (std::size_t row = 0; row < dialog.rows().size(); ++row) {
    EXPECT_TRUE(isInView(row)) << row;
    key(ui::key::kTab);
  }
  key(ui::key::kHome);
  EXPECT_TRUE(isInView(kOnDisk));
}

TEST_F(LowSettingsDialogTest, ScrollsWithTheWheelAndHighlightsWhatComesUnderThePointer) {
  const ui::MouseEvent pointer = at(dialog.listRect(), 0);
  dialog.motion(pointer);
  dialog.wheel(pointer, 50);
  EXPECT_TRUE(isInView(kUpdates));
  const auto covered = [&] {
    for (std::size_t row = 0;; ++row) {
      if (dialog.rowRect(row).contains(pointer.x, pointer.y)) return dialog.rowRect(row);
    }
  };
  const ui::Rect row = covered();
  EXPECT_EQ(picture().at(row.x + 3, row.y + row.h / 2), rgb(style.palette().raised));
  dialog.wheel(pointer, -50);
  EXPECT_TRUE(isInView(kOnDisk));
}

TEST_F(LowSettingsDialogTest, ScrollsWithTheBar) {
  const ui::Rect& list = dialog.listRect();
  const int x = list.x + list.w - 3;
  dialog.press({.x = x, .y = list.y + 3, .button = 1});
  dialog.motion({.x = x, .y = list.y + list.h});
  EXPECT_TRUE(isInView(kUpdates));
  dialog.release({.x = x, .y = list.y + list.h, .button = 1});
  dialog.motion({.x = x, .y = list.y});
  EXPECT_TRUE(isInView(kUpdates)) << "drags on after the button was let go";
  EXPECT_EQ(changes, 0);
}

TEST_F(LowSettingsDialogTest, DoesNotFlipRowsThatAreScrolledBelowTheButtons) {
  click(dialog.buttonRect(kResetAll));
  EXPECT_TRUE(nothingIsStored());
  const ui::Rect& list = dialog.listRect();
  dialog.press({.x = list.x + 20, .y = list.y + list.h + 2, .button = 1});
  dialog.release({.x = list.x + 20, .y = list.y + list.h + 2, .button = 1});
  EXPECT_TRUE(nothingIsStored());
}

/// The least window at twice the scale.
class LargeSettingsDialogTest : public testing::Test, protected SettingsDialogOn {
 protected:
  LargeSettingsDialogTest() : SettingsDialogOn(ui::kDarkPalette, 2, 1280, 840) {}
};

TEST_F(LargeSettingsDialogTest, KeepsItsTextsBesideTheSwitches) {
  const auto frame = picture();
  for (std::size_t row = 0; row < dialog.rows().size(); ++row) {
    if (!isInView(row)) continue;
    const ui::Rect knob = dialog.switchRect(row);
    const ui::Rect rect = dialog.rowRect(row);
    const test::Picture gap = frame.part(knob.x - 12, rect.y + 6, 10, rect.h - 12);
    EXPECT_EQ(gap.count(rgb(style.palette().window)), 10L * (rect.h - 12)) << row;
  }
}

TEST_F(LargeSettingsDialogTest, HasItsLengthsTwiceAsLong) {
  EXPECT_EQ(dialog.panel().w, 1040);
  EXPECT_EQ(dialog.switchRect(kOnDisk).w, 72);
}

}  // namespace
}  // namespace app
