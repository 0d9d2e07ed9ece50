#include "app/menus.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <utility>
#include <vector>

namespace app {
namespace {

constexpr CommandState kWithScan = {.scanShown = true};

/// The labels, "-" for a separator, in brackets what cannot be chosen.
std::vector<std::string> shown(const std::vector<ui::MenuEntry>& entries) {
  std::vector<std::string> labels;
  for (const ui::MenuEntry& entry : entries) {
    if (entry.separates()) {
      labels.emplace_back("-");
    } else {
      labels.push_back(entry.canBeChosen() ? entry.label : "(" + entry.label + ")");
    }
  }
  return labels;
}

using Labels = std::vector<std::string>;

ui::MenuEntry entry(const std::string& label, bool enabled = true) {
  return {.label = label, .enabled = enabled, .action = [] {}};
}

TEST(MenuEntry, CannotBeChosenWhenItIsDisabledOrSeparatesOrDoesNothing) {
  EXPECT_TRUE(entry("a").canBeChosen());
  EXPECT_FALSE(entry("a", false).canBeChosen());
  EXPECT_FALSE(entry("").canBeChosen());
  EXPECT_FALSE((ui::MenuEntry{.label = "a", .action = {}}).canBeChosen());
}

TEST(NextEntry, SkipsWhatCannotBeChosen) {
  const std::vector<ui::MenuEntry> entries = {entry("a"), {}, entry("b", false), entry("c")};
  EXPECT_EQ(ui::nextEntry(entries, 0, ui::MenuStep::Down), 3u);
  EXPECT_EQ(ui::nextEntry(entries, 3, ui::MenuStep::Up), 0u);
}

TEST(NextEntry, GoesOnFromTheOtherEnd) {
  const std::vector<ui::MenuEntry> entries = {entry("a"), entry("b"), entry("c", false)};
  EXPECT_EQ(ui::nextEntry(entries, 1, ui::MenuStep::Down), 0u);
  EXPECT_EQ(ui::nextEntry(entries, 0, ui::MenuStep::Up), 1u);
}

TEST(NextEntry, BeginsAtAnEnd) {
  const std::vector<ui::MenuEntry> entries = {{}, entry("a"), entry("b"), entry("c", false)};
  EXPECT_EQ(ui::nextEntry(entries, std::nullopt, ui::MenuStep::Down), 1u);
  EXPECT_EQ(ui::nextEntry(entries, std::nullopt, ui::MenuStep::Up), 2u);
}

TEST(NextEntry, IsTheSameAgainWhenThereIsNoOther) {
  const std::vector<ui::MenuEntry> entries = {entry("a", false), entry("b")};
  EXPECT_EQ(ui::nextEntry(entries, 1, ui::MenuStep::Down), 1u);
  EXPECT_EQ(ui::nextEntry(entries, 1, ui::MenuStep::Up), 1u);
}

TEST(NextEntry, IsNoneWhereNothingCanBeChosen) {
  EXPECT_EQ(ui::nextEntry({}, std::nullopt, ui::MenuStep::Down), std::nullopt);
  const std::vector<ui::MenuEntry> entries = {entry("a", false), {}};
  EXPECT_EQ(ui::nextEntry(entries, std::nullopt, ui::MenuStep::Up), std::nullopt);
}

TEST(ApplicationMenu, OffersItsEntriesWhileAScanIsShown) {
  EXPECT_EQ(shown(applicationMenu(kWithScan, {})),
            (Labels{"Open…", "Rescan", "-", "Copy Path", "Open", "Show in Files", "-",
                    "Move to Trash", "-", "Settings…", "About Heap Gauge"}));
}

TEST(ApplicationMenu, OffersOnlySettingsAndTheAboutBoxBeforeAnyScan) {
  EXPECT_EQ(shown(applicationMenu({}, {})),
            (Labels{"(Open…)", "(Rescan)", "-", "(Copy Path)", "(Open)", "(Show in Files)", "-",
                    "(Move to Trash)", "-", "Settings…", "About Heap Gauge"}));
}

TEST(ApplicationMenu, PerformsCommands) {
  std::vector<Command> performed;
  const auto perform = [&](const Command& command) { performed.push_back(command); };
  for (const ui::MenuEntry& entry : applicationMenu(kWithScan, perform)) {
    if (entry.canBeChosen()) entry.action();
  }
  EXPECT_EQ(performed, (std::vector<Command>{{.action = Action::LeaveScan},
                                             {.action = Action::Rescan},
                                             {.action = Action::CopyPath},
                                             {.action = Action::Open},
                                             {.action = Action::ShowInFiles},
                                             {.action = Action::MoveToTrash},
                                             {.action = Action::OpenSettings},
                                             {.action = Action::ShowAbout}}));
}

TEST(ContextMenu, OffersWhatCanBeDoneWithAnItem) {
  EXPECT_EQ(shown(contextMenu(5, kWithScan, {})),
            (Labels{"Copy Path", "Open", "Show in Files", "-", "Rescan This Folder", "-",
                    "Move to Trash"}));
}

TEST(ContextMenu, OffersNothingForTheScannedFolder) {
  EXPECT_EQ(shown(contextMenu(sizewalk::kRootNode, kWithScan, {})),
            (Labels{"(Copy Path)", "(Open)", "(Show in Files)", "-", "(Rescan This Folder)", "-",
                    "(Move to Trash)"}));
}

TEST(ContextMenu, TrashesButDoesNotReadAgainWhileTheScanRuns) {
  EXPECT_EQ(shown(contextMenu(5, {.scanShown = true, .scanning = true}, {})),
            (Labels{"Copy Path", "Open", "Show in Files", "-", "(Rescan This Folder)", "-",
                    "Move to Trash"}));
}

TEST(ContextMenu, ReadsNothingAgainBeforeAStoppedScanHasEnded) {
  const auto entries = contextMenu(5, {.scanShown = true, .stopping = true}, {});
  EXPECT_FALSE(entries.at(4).enabled);
}

TEST(ContextMenu, NamesItsItemInEveryCommand) {
  std::vector<Command> performed;
  const auto perform = [&](const Command& command) { performed.push_back(command); };
  for (const ui::MenuEntry& entry : contextMenu(7, kWithScan, perform)) {
    if (entry.canBeChosen()) entry.action();
  }
  EXPECT_EQ(performed, (std::vector<Command>{{.action = Action::CopyPath, .target = 7},
                                             {.action = Action::Open, .target = 7},
                                             {.action = Action::ShowInFiles, .target = 7},
                                             {.action = Action::RescanFolder, .target = 7},
                                             {.action = Action::MoveToTrash, .target = 7}}));
}

TEST(ContextMenu, BeginsWithNothingDestructive) {
  EXPECT_EQ(contextMenu(5, kWithScan, {}).front().label, "Copy Path");
}

TEST(SelectionMenu, OffersToTrashAllThatIsSelected) {
  std::vector<Command> performed;
  const auto perform = [&](const Command& command) { performed.push_back(command); };
  const auto entries = selectionMenu(1234, perform);
  EXPECT_EQ(shown(entries), Labels{"Move 1,234 Items to Trash"});
  entries.front().action();
  EXPECT_EQ(performed, (std::vector<Command>{{.action = Action::MoveToTrash}}));
}

TEST(MeasureMenu, TicksTheCurrentMeasure) {
  std::vector<std::pair<std::string, bool>> entries;
  for (const ui::MenuEntry& entry : measureMenu(Measure::AddedLastSixMonths, {})) {
    entries.emplace_back(entry.label, entry.ticked);
  }
  EXPECT_EQ(entries,
            (std::vector<std::pair<std::string, bool>>{{"Current size", false},
                                                       {"Added in the last month", false},
                                                       {"Added in the last six months", true},
                                                       {"Added since last scan", false}}));
}

TEST(MeasureMenu, HasTheViewsShowTheMeasureThatIsChosen) {
  std::vector<Command> performed;
  const auto perform = [&](const Command& command) { performed.push_back(command); };
  for (const ui::MenuEntry& entry : measureMenu(Measure::CurrentSize, perform)) entry.action();
  EXPECT_EQ(performed,
            (std::vector<Command>{
                {.action = Action::ShowMeasure, .measure = Measure::CurrentSize},
                {.action = Action::ShowMeasure, .measure = Measure::AddedLastMonth},
                {.action = Action::ShowMeasure, .measure = Measure::AddedLastSixMonths},
                {.action = Action::ShowMeasure, .measure = Measure::AddedSinceLastScan}}));
}

// Keys.

/// The labels with their keys, of the entries that have one.
std::vector<std::string> withKeys(const std::vector<ui::MenuEntry>& entries) {
  std::vector<std::string> found;
  for (const ui::MenuEntry& entry : entries) {
    if (!entry.key.empty()) found.push_back(entry.label + ": " + entry.key);
  }
  return found;
}

/// The key as a hand presses it that reads its name.
ui::KeyEvent pressOf(std::string name) {
  ui::KeyEvent event;
  if (name.starts_with("Ctrl+")) {
    event.ctrl = true;
    name.erase(0, 5);
  }
  if (name == "Delete") {
    event.keysym = 0xFFFF;
  } else if (name.size() > 1 && name[0] == 'F') {
    event.keysym = 0xFFBD + std::stoul(name.substr(1));
  } else if (name.size() == 1) {
    event.keysym = static_cast<unsigned char>(name[0] | (std::isalpha(name[0]) ? 0x20 : 0));
  }
  return event;
}

TEST(MenuKeys, StandBesideTheEntriesThatHaveOne) {
  EXPECT_EQ(withKeys(applicationMenu(kWithScan, {})),
            (Labels{"Open…: Ctrl+O", "Rescan: F5", "Copy Path: Ctrl+C", "Move to Trash: Delete",
                    "Settings…: Ctrl+,", "About Heap Gauge: F1"}));
  EXPECT_EQ(withKeys(contextMenu(5, kWithScan, {})),
            (Labels{"Copy Path: Ctrl+C", "Move to Trash: Delete"}));
  EXPECT_EQ(withKeys(selectionMenu(3, {})), (Labels{"Move 3 Items to Trash: Delete"}));
  EXPECT_EQ(withKeys(measureMenu(Measure::CurrentSize, {})),
            (Labels{"Current size: Ctrl+1", "Added in the last month: Ctrl+2",
                    "Added in the last six months: Ctrl+3", "Added since last scan: Ctrl+4"}));
}

TEST(MenuKeys, DoWhenTheyArePressedWhatTheirEntryDoes) {
  std::vector<Command> performed;
  const auto perform = [&](const Command& command) { performed.push_back(command); };
  int keys = 0;
  for (const auto& entries :
       {applicationMenu(kWithScan, perform), contextMenu(7, kWithScan, perform),
        selectionMenu(3, perform), measureMenu(Measure::CurrentSize, perform)}) {
    for (const ui::MenuEntry& entry : entries) {
      if (entry.key.empty()) continue;
      ++keys;
      performed.clear();
      entry.action();
      const auto pressed = commandFor(pressOf(entry.key));
      ASSERT_TRUE(pressed) << entry.key;
      EXPECT_EQ(pressed->action, performed.at(0).action) << entry.label;
      EXPECT_EQ(pressed->measure, performed.at(0).measure) << entry.label;
    }
  }
  EXPECT_EQ(keys, 13);
}

}  // namespace
}  // namespace app
