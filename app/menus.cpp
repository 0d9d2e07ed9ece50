#include "app/menus.h"

#include <string>

#include "app/frame/toolbar_layout.h"

namespace app {

namespace {

constexpr Measure kMeasures[] = {Measure::CurrentSize, Measure::AddedLastMonth,
                                 Measure::AddedLastSixMonths, Measure::AddedSinceLastScan};

}  // namespace

std::vector<ui::MenuEntry> applicationMenu(const CommandState& state,
                                           const PerformCommand& perform) {
  const auto entry = [&](Action action) {
    const Command command{.action = action};
    return ui::MenuEntry{.label = std::string(labelOf(action)),
                         .enabled = isEnabled(command, state),
                         .action = [perform, command] { perform(command); }};
  };
  return {entry(Action::LeaveScan),   entry(Action::Rescan), {}, entry(Action::CopyPath), {},
          entry(Action::OpenSettings)};
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
