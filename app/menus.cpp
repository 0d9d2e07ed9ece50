#include "app/menus.h"

#include <string>
#include <utility>

#include "app/frame/toolbar_layout.h"
#include "app/model/format.h"

namespace app {

namespace {

constexpr Measure kMeasures[] = {Measure::CurrentSize, Measure::AddedLastMonth,
                                 Measure::AddedLastSixMonths, Measure::AddedSinceLastScan};

ui::MenuEntry entryFor(std::string label, const Command& command, const PerformCommand& perform) {
  return {.label = std::move(label),
          .action = [perform, command] { perform(command); },
          .key = keyOf(command)};
}

ui::MenuEntry entryFor(const Command& command, const CommandState& state,
                       const PerformCommand& perform) {
  ui::MenuEntry entry = entryFor(std::string(labelOf(command.action)), command, perform);
  entry.enabled = isEnabled(command, state);
  return entry;
}

}  // namespace

std::vector<ui::MenuEntry> applicationMenu(const CommandState& state,
                                           const PerformCommand& perform) {
  const auto entry = [&](Action action) { return entryFor({.action = action}, state, perform); };
  return {entry(Action::LeaveScan),
          entry(Action::Rescan),
          {},
          entry(Action::CopyPath),
          entry(Action::Open),
          entry(Action::ShowInFiles),
          {},
          entry(Action::MoveToTrash),
          {},
          entry(Action::OpenSettings),
          entry(Action::ShowAbout)};
}

std::vector<ui::MenuEntry> contextMenu(sizewalk::NodeId node, const CommandState& state,
                                       const PerformCommand& perform) {
  const auto entry = [&](Action action) {
    return entryFor({.action = action, .target = node}, state, perform);
  };
  return {entry(Action::CopyPath),     entry(Action::Open),
          entry(Action::ShowInFiles),  {},
          entry(Action::RescanFolder), {},
          entry(Action::MoveToTrash)};
}

std::vector<ui::MenuEntry> selectionMenu(std::int64_t selected, const PerformCommand& perform) {
  return {entryFor("Move " + formatCount(selected) + " Items to Trash",
                   {.action = Action::MoveToTrash}, perform)};
}

std::vector<ui::MenuEntry> measureMenu(Measure current, const PerformCommand& perform) {
  std::vector<ui::MenuEntry> entries;
  for (const Measure measure : kMeasures) {
    entries.push_back(entryFor(std::string(measureName(measure)),
                               {.action = Action::ShowMeasure, .measure = measure}, perform));
    entries.back().ticked = measure == current;
  }
  return entries;
}

}  // namespace app
