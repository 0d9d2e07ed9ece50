#include "app/menus.h"

#include <string>

#include "app/frame/toolbar_layout.h"
#include "app/model/format.h"

namespace app {

namespace {

constexpr Measure kMeasures[] = {Measure::CurrentSize, Measure::AddedLastMonth,
                                 Measure::AddedLastSixMonths, Measure::AddedSinceLastScan};

}  // namespace

namespace {

ui::MenuEntry entryFor(const Command& command, const CommandState& state,
                       const PerformCommand& perform) {
  return {.label = std::string(labelOf(command.action)),
          .enabled = isEnabled(command, state),
          .action = [perform, command] { perform(command); }};
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
  const Command command{.action = Action::MoveToTrash};
  return {{.label = "Move " + formatCount(selected) + " Items to Trash",
           .action = [perform, command] { perform(command); }}};
}

std::vector<ui::MenuEntry> measureMenu(Measure current, const PerformCommand& perform) {
  std::vector<ui::MenuEntry> entries;
  for (const Measure measure : kMeasures) {
    entries.push_back(
        {.label = std::string(measureName(measure)),
         .action = [perform,
                    measure] { perform({.action = Action::ShowMeasure, .measure = measure}); },
         .ticked = measure == current});
  }
  return entries;
}

}  // namespace app
