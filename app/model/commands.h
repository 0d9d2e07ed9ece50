#pragma once

#include <cstdint>
#include <optional>

#include "app/model/measure.h"
#include "ui/input.h"

namespace app {

/// What the user can have the window do. Toolbar, menus and keys all end here, and one place
/// decides whether a command makes sense at the moment.
enum class Command : std::uint8_t {
  LeaveScan,
  StopScan,
  Rescan,
  GoOut,
  GoToScannedFolder,
  GoToPrevious,
  GoToNext,
  CopyPath,
  ShowCurrentSize,
  ShowAddedLastMonth,
  ShowAddedLastSixMonths,
  ShowAddedSinceLastScan,
  OpenMenu,
  OpenSettings,
  Close,
};

/// The command that a key stands for wherever the keys go; nothing for other keys.
std::optional<Command> commandFor(const ui::KeyEvent& event);

/// What the enabling of commands depends on.
struct CommandState {
  bool scanShown = false;
  bool scanning = false;
  bool canGoOut = false;
};

/// The command that has the views show `measure`.
Command commandThatShows(Measure measure);
/// What a command shows that is one of those.
Measure measureOf(Command command);

bool isEnabled(Command command, const CommandState& state);

}  // namespace app
