#include "app/commands.h"

#include "ui/keys.h"

namespace app {

namespace {

using ui::key::Keysym;

struct Shortcut {
  Keysym keysym;
  bool ctrl;
  Command command;
};

// Letters stand in lower case: Shift and Caps Lock make no difference.
constexpr Shortcut kShortcuts[] = {
    {'o', true, Command::LeaveScan},
    {'r', true, Command::Rescan},
    {ui::key::kF5, false, Command::Rescan},
    {ui::key::kBackSpace, false, Command::GoOut},
    {ui::key::kUp, true, Command::GoOut},
    {ui::key::kHome, true, Command::GoToScannedFolder},
    {ui::key::kLeft, true, Command::GoToPrevious},
    {ui::key::kRight, true, Command::GoToNext},
    {'c', true, Command::CopyPath},
    {'1', true, Command::ShowCurrentSize},
    {'2', true, Command::ShowAddedLastMonth},
    {'3', true, Command::ShowAddedLastSixMonths},
    {'4', true, Command::ShowAddedSinceLastScan},
    {'q', true, Command::Close},
    {'w', true, Command::Close},
};

Keysym lowered(Keysym keysym) {
  return keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
}

}  // namespace

std::optional<Command> commandFor(const ui::KeyEvent& event) {
  const Keysym keysym = lowered(ui::key::plain(event.keysym));
  for (const Shortcut& shortcut : kShortcuts) {
    if (shortcut.keysym == keysym && shortcut.ctrl == event.ctrl) return shortcut.command;
  }
  return std::nullopt;
}

bool isEnabled(Command command, const CommandState& state) {
  switch (command) {
    case Command::Close:
      return true;
    case Command::StopScan:
      return state.scanShown && state.scanning;
    case Command::GoOut:
    case Command::GoToScannedFolder:
      return state.scanShown && state.canGoOut;
    default:
      return state.scanShown;
  }
}

}  // namespace app
