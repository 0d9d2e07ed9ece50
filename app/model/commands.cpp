#include "app/model/commands.h"

#include "ui/keys.h"

namespace app {

namespace {

using ui::key::Keysym;

struct Shortcut {
  Keysym keysym;
  bool ctrl;
  Command command;
};

// Letters stand in lower case: Caps Lock makes no difference, nor does Shift, but for F10.
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
    {ui::key::kF10, false, Command::OpenMenu},
    {',', true, Command::OpenSettings},
    {'q', true, Command::Close},
    {'w', true, Command::Close},
};

Keysym lowered(Keysym keysym) {
  return keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
}

}  // namespace

std::optional<Command> commandFor(const ui::KeyEvent& event) {
  const Keysym keysym = lowered(ui::key::plain(event.keysym));
  // The context menu, which is up to the view with the keyboard.
  if (keysym == ui::key::kF10 && event.shift) return std::nullopt;
  for (const Shortcut& shortcut : kShortcuts) {
    if (shortcut.keysym == keysym && shortcut.ctrl == event.ctrl) return shortcut.command;
  }
  return std::nullopt;
}

Command commandThatShows(Measure measure) {
  return static_cast<Command>(static_cast<int>(Command::ShowCurrentSize) +
                              static_cast<int>(measure));
}

Measure measureOf(Command command) {
  return static_cast<Measure>(static_cast<int>(command) -
                              static_cast<int>(Command::ShowCurrentSize));
}

bool isEnabled(Command command, const CommandState& state) {
  switch (command) {
    case Command::OpenMenu:
    case Command::OpenSettings:
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
