#pragma once

#include <cstdint>
#include <optional>

#include "app/model/measure.h"
#include "sizewalk/node.h"
#include "ui/input.h"

namespace app {

/// What the user can have the window do.
enum class Action : std::uint8_t {
  LeaveScan,
  StopScan,
  Rescan,
  GoOut,
  GoToScannedFolder,
  GoToPrevious,
  GoToNext,
  /// Focuses the target.
  GoTo,
  CopyPath,
  ShowMeasure,
  OpenMeasureMenu,
  OpenApplicationMenu,
  OpenSettings,
  Close,
};

/// Something to be done, and to what. Toolbar, menus and keys all end here, and one place decides
/// whether a command makes sense at the moment.
struct Command {
  /// Where a command comes from: a menu that a key opened begins at its first entry.
  enum class By : std::uint8_t { Pointer, Key };

  Action action;
  /// The item that it acts on. Nothing where it acts on none, or on what is selected or in focus
  /// when it runs.
  std::optional<sizewalk::NodeId> target = {};
  /// For `ShowMeasure`.
  Measure measure = Measure::CurrentSize;
  By by = By::Pointer;

  friend bool operator==(const Command&, const Command&) = default;
};

/// The command that a key stands for wherever the keys go; nothing for other keys.
std::optional<Command> commandFor(const ui::KeyEvent& event);

/// What the enabling of commands depends on.
struct CommandState {
  bool scanShown = false;
  bool scanning = false;
  bool canGoOut = false;
};

bool isEnabled(const Command& command, const CommandState& state);

}  // namespace app
