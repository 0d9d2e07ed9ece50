#include "app/model/commands.h"

#include <gtest/gtest.h>

#include "ui/keys.h"

namespace app {
namespace {

std::optional<Command> commandOf(unsigned long keysym, bool ctrl = false) {
  return commandFor({.keysym = keysym, .text = {}, .shift = false, .ctrl = ctrl});
}

TEST(CommandFor, KnowsTheShortcuts) {
  EXPECT_EQ(commandOf('o', true), Command::LeaveScan);
  EXPECT_EQ(commandOf(ui::key::kF5), Command::Rescan);
  EXPECT_EQ(commandOf('r', true), Command::Rescan);
  EXPECT_EQ(commandOf(ui::key::kBackSpace), Command::GoOut);
  EXPECT_EQ(commandOf(ui::key::kUp, true), Command::GoOut);
  EXPECT_EQ(commandOf(ui::key::kHome, true), Command::GoToScannedFolder);
  EXPECT_EQ(commandOf(ui::key::kLeft, true), Command::GoToPrevious);
  EXPECT_EQ(commandOf(ui::key::kRight, true), Command::GoToNext);
  EXPECT_EQ(commandOf('c', true), Command::CopyPath);
  EXPECT_EQ(commandOf('1', true), Command::ShowCurrentSize);
  EXPECT_EQ(commandOf('2', true), Command::ShowAddedLastMonth);
  EXPECT_EQ(commandOf('3', true), Command::ShowAddedLastSixMonths);
  EXPECT_EQ(commandOf('4', true), Command::ShowAddedSinceLastScan);
  EXPECT_EQ(commandOf(ui::key::kF10), Command::OpenMenu);
  EXPECT_EQ(commandOf(',', true), Command::OpenSettings);
  EXPECT_EQ(commandOf('q', true), Command::Close);
  EXPECT_EQ(commandOf('w', true), Command::Close);
}

TEST(CommandFor, TakesLettersInEitherCaseAndTheNumberPad) {
  EXPECT_EQ(commandOf('O', true), Command::LeaveScan);
  EXPECT_EQ(commandOf(ui::key::kKeypadHome, true), Command::GoToScannedFolder);
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

TEST(CommandThatShows, IsTheOneOfTheMeasure) {
  EXPECT_EQ(commandThatShows(Measure::CurrentSize), Command::ShowCurrentSize);
  EXPECT_EQ(commandThatShows(Measure::AddedLastMonth), Command::ShowAddedLastMonth);
  EXPECT_EQ(commandThatShows(Measure::AddedSinceLastScan), Command::ShowAddedSinceLastScan);
  EXPECT_EQ(measureOf(Command::ShowCurrentSize), Measure::CurrentSize);
  EXPECT_EQ(measureOf(Command::ShowAddedLastSixMonths), Measure::AddedLastSixMonths);
}

TEST(IsEnabled, OnlyClosingAndSettingsMakeSenseWithoutAScan) {
  EXPECT_TRUE(isEnabled(Command::Close, {}));
  EXPECT_TRUE(isEnabled(Command::OpenMenu, {}));
  EXPECT_TRUE(isEnabled(Command::OpenSettings, {}));
  EXPECT_FALSE(isEnabled(Command::LeaveScan, {}));
  EXPECT_FALSE(isEnabled(Command::Rescan, {}));
  EXPECT_FALSE(isEnabled(Command::StopScan, {.scanning = true}));
  EXPECT_FALSE(isEnabled(Command::ShowCurrentSize, {}));
}

TEST(IsEnabled, StoppingNeedsARunningScan) {
  EXPECT_FALSE(isEnabled(Command::StopScan, {.scanShown = true}));
  EXPECT_TRUE(isEnabled(Command::StopScan, {.scanShown = true, .scanning = true}));
  EXPECT_TRUE(isEnabled(Command::Rescan, {.scanShown = true, .scanning = true}));
}

TEST(IsEnabled, GoingOutNeedsAFolderAroundTheFocusedOne) {
  EXPECT_FALSE(isEnabled(Command::GoOut, {.scanShown = true}));
  EXPECT_FALSE(isEnabled(Command::GoToScannedFolder, {.scanShown = true}));
  EXPECT_TRUE(isEnabled(Command::GoOut, {.scanShown = true, .canGoOut = true}));
}

}  // namespace
}  // namespace app
