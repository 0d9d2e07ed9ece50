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
  const auto entry = [&](std::string label, Command command) {
    return ui::MenuEntry{.label = std::move(label),
                         .enabled = isEnabled(command, state),
                         .action = [perform, command] { perform(command); }};
  };
  return {entry(std::string(kOpenText), Command::LeaveScan),
          entry(std::string(kRescanText), Command::Rescan),
          {},
          entry("Copy Path", Command::CopyPath),
          {},
          entry("Settings…", Command::OpenSettings)};
}

std::vector<ui::MenuEntry> measureMenu(Measure current, const PerformCommand& perform) {
  std::vector<ui::MenuEntry> entries;
  for (const Measure measure : kMeasures) {
    entries.push_back({.label = std::string(measureName(measure)),
                       .action = [perform, measure] { perform(commandThatShows(measure)); },
                       .ticked = measure == current});
  }
  return entries;
}

}  // namespace app
