#include "app/model/commands.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ui/keys.h"

namespace app {
namespace {

std::optional<Command> commandOf(unsigned long keysym, bool ctrl = false) {
  return commandFor({.keysym = keysym, .text = {}, .shift = false, .ctrl = ctrl});
}
Command byKey(Action action, Measure measure = Measure::CurrentSize) {
  return {.action = action, .measure = measure, .by = Command::By::Key};
}
bool enabled(Action action, const CommandState& state) {
  return isEnabled({.action = action}, state);
}

TEST(CommandFor, KnowsTheShortcuts) {
  EXPECT_EQ(commandOf('o', true), byKey(Action::LeaveScan));
  EXPECT_EQ(commandOf(ui::key::kF5), byKey(Action::Rescan));
  EXPECT_EQ(commandOf('r', true), byKey(Action::Rescan));
  EXPECT_EQ(commandOf(ui::key::kBackSpace), byKey(Action::GoOut));
  EXPECT_EQ(commandOf(ui::key::kUp, true), byKey(Action::GoOut));
  EXPECT_EQ(commandOf(ui::key::kHome, true), byKey(Action::GoToScannedFolder));
  EXPECT_EQ(commandOf(ui::key::kLeft, true), byKey(Action::GoToPrevious));
  EXPECT_EQ(commandOf(ui::key::kRight, true), byKey(Action::GoToNext));
  EXPECT_EQ(commandOf('c', true), byKey(Action::CopyPath));
  EXPECT_EQ(commandOf('1', true), byKey(Action::ShowMeasure, Measure::CurrentSize));
  EXPECT_EQ(commandOf('2', true), byKey(Action::ShowMeasure, Measure::AddedLastMonth));
  EXPECT_EQ(commandOf('3', true), byKey(Action::ShowMeasure, Measure::AddedLastSixMonths));
  EXPECT_EQ(commandOf('4', true), byKey(Action::ShowMeasure, Measure::AddedSinceLastScan));
  EXPECT_EQ(commandOf(ui::key::kF10), byKey(Action::OpenApplicationMenu));
  EXPECT_EQ(commandOf(ui::key::kEscape), byKey(Action::StopScan));
  EXPECT_EQ(commandOf(',', true), byKey(Action::OpenSettings));
  EXPECT_EQ(commandOf('q', true), byKey(Action::Close));
  EXPECT_EQ(commandOf('w', true), byKey(Action::Close));
}

TEST(CommandFor, KnowsLettersWithShiftOrCapsLock) {
  EXPECT_EQ(commandOf('Z', true), byKey(Action::PutBackLast));
  EXPECT_EQ(commandOf('C', true), byKey(Action::CopyPath));
}

TEST(CommandFor, TakesLettersInEitherCaseAndTheNumberPad) {
  EXPECT_EQ(commandOf('O', true), byKey(Action::LeaveScan));
  EXPECT_EQ(commandOf(ui::key::kKeypadHome, true), byKey(Action::GoToScannedFolder));
}

TEST(CommandFor, LeavesOtherKeysToTheViews) {
  EXPECT_EQ(commandOf('o'), std::nullopt);
  EXPECT_EQ(commandOf('x', true), std::nullopt);
  EXPECT_EQ(commandOf(ui::key::kUp), std::nullopt);
  EXPECT_EQ(commandOf(ui::key::kF5, true), std::nullopt);
  EXPECT_EQ(commandOf(','), std::nullopt);
}

TEST(CommandFor, LeavesTheKeyOfTheContextMenuToTheViews) {
  EXPECT_EQ(commandFor({.keysym = ui::key::kF10, .text = {}, .shift = true}), std::nullopt);
}

/// The keys that may stand for a command, by the names that people know them by.
std::vector<std::pair<unsigned long, std::string>> keysWithNames() {
  std::vector<std::pair<unsigned long, std::string>> keys = {{ui::key::kBackSpace, "Backspace"},
                                                             {ui::key::kTab, "Tab"},
                                                             {ui::key::kReturn, "Enter"},
                                                             {ui::key::kEscape, "Escape"},
                                                             {ui::key::kHome, "Home"},
                                                             {ui::key::kLeft, "Left"},
                                                             {ui::key::kUp, "Up"},
                                                             {ui::key::kRight, "Right"},
                                                             {ui::key::kDown, "Down"},
                                                             {ui::key::kPageUp, "Page Up"},
                                                             {ui::key::kEnd, "End"},
                                                             {ui::key::kPageDown, "Page Down"},
                                                             {ui::key::kDelete, "Delete"},
                                                             {ui::key::kMenu, "Menu"}};
  for (unsigned long number = 1; number <= 12; ++number) {
    keys.emplace_back(ui::key::kF1 + number - 1, "F" + std::to_string(number));
  }
  for (unsigned char c = '!'; c <= '~'; ++c) {
    if (std::isupper(c) == 0)
      keys.emplace_back(c, std::string(1, static_cast<char>(std::toupper(c))));
  }
  return keys;
}

std::set<std::string> keysOfCommands() {
  std::set<std::string> names;
  for (const auto& [keysym, name] : keysWithNames()) {
    if (commandOf(keysym)) names.insert(name);
    if (commandOf(keysym, true)) names.insert("Ctrl+" + name);
  }
  return names;
}

/// What stands between backticks in the first column of the README's first table of keys.
std::set<std::string> keysOfReadme() {
  std::set<std::string> keys;
  std::ifstream readme(HEAPGAUGE_README_FILE);
  std::string line;
  while (std::getline(readme, line) && line != "## Keys") {
  }
  while (std::getline(readme, line) && (line.empty() || line.starts_with('|'))) {
    const std::string column = line.substr(0, line.find('|', 1));
    for (std::size_t from = column.find('`'); from != std::string::npos;) {
      const std::size_t to = column.find('`', from + 1);
      keys.insert(column.substr(from + 1, to - from - 1));
      from = column.find('`', to + 1);
    }
  }
  return keys;
}

TEST(CommandFor, KnowsTheKeysOfTheReadmeAndNoOthers) {
  std::set<std::string> keys = keysOfReadme();
  for (const char* const ofViews : {"Tab", "Shift+Tab", "Menu", "Shift+F10"}) {
    EXPECT_EQ(keys.erase(ofViews), 1) << ofViews;
  }
  EXPECT_EQ(keys, keysOfCommands());
}

TEST(TraitsOf, KnowsEveryAction) {
  for (int i = 0; i <= static_cast<int>(Action::Close); ++i) {
    const auto action = static_cast<Action>(i);
    EXPECT_EQ(std::ranges::count(kActions, action, &ActionTraits::action), 1) << i;
  }
  EXPECT_EQ(labelOf(Action::CopyPath), "Copy Path");
}

TEST(IsEnabled, OnlyClosingAndSettingsMakeSenseWithoutAScan) {
  EXPECT_TRUE(enabled(Action::Close, {}));
  EXPECT_TRUE(enabled(Action::OpenApplicationMenu, {}));
  EXPECT_TRUE(enabled(Action::OpenSettings, {}));
  EXPECT_FALSE(enabled(Action::LeaveScan, {}));
  EXPECT_FALSE(enabled(Action::Rescan, {}));
  EXPECT_FALSE(enabled(Action::StopScan, {.scanning = true}));
  EXPECT_FALSE(enabled(Action::ShowMeasure, {}));
}

TEST(IsEnabled, StoppingNeedsARunningScan) {
  EXPECT_FALSE(enabled(Action::StopScan, {.scanShown = true}));
  EXPECT_TRUE(enabled(Action::StopScan, {.scanShown = true, .scanning = true}));
  EXPECT_TRUE(enabled(Action::Rescan, {.scanShown = true, .scanning = true}));
}

TEST(IsEnabled, GoingOutNeedsAFolderAroundTheFocusedOne) {
  EXPECT_FALSE(enabled(Action::GoOut, {.scanShown = true}));
  EXPECT_FALSE(enabled(Action::GoToScannedFolder, {.scanShown = true}));
  EXPECT_TRUE(enabled(Action::GoOut, {.scanShown = true, .canGoOut = true}));
}

TEST(KeyOf, IsWrittenAsOnTheKeyboard) {
  EXPECT_EQ(keyOf({.action = Action::LeaveScan}), "Ctrl+O");
  EXPECT_EQ(keyOf({.action = Action::Rescan}), "F5") << "of two the shorter one";
  EXPECT_EQ(keyOf({.action = Action::OpenApplicationMenu}), "F10");
  EXPECT_EQ(keyOf({.action = Action::GoOut}), "Backspace");
  EXPECT_EQ(keyOf({.action = Action::GoToScannedFolder}), "Ctrl+Home");
  EXPECT_EQ(keyOf({.action = Action::GoToPrevious}), "Ctrl+Left");
  EXPECT_EQ(keyOf({.action = Action::GoToNext}), "Ctrl+Right");
  EXPECT_EQ(keyOf({.action = Action::StopScan}), "Escape");
  EXPECT_EQ(keyOf({.action = Action::ShowMeasure, .measure = Measure::AddedSinceLastScan}),
            "Ctrl+4");
  EXPECT_EQ(keyOf({.action = Action::MoveToTrash, .target = 5}), "Delete");
}

TEST(KeyOf, IsNoneWhereNoKeyStandsForTheCommand) {
  EXPECT_EQ(keyOf({.action = Action::ShowInFiles}), "");
  EXPECT_EQ(keyOf({.action = Action::RescanFolder, .target = 5}), "");
}

}  // namespace
}  // namespace app
