#include "app/model/commands.h"

#include "ui/keys.h"

namespace app {

namespace {

using ui::key::Keysym;

struct Shortcut {
  Keysym keysym;
  bool ctrl;
  Action action;
  Measure measure = Measure::CurrentSize;
};

// All keys of commands. Of two for the same command menus show the first.
// Letters stand in lower case: Caps Lock makes no difference, nor does Shift, but for F10.
constexpr Shortcut kShortcuts[] = {
    {'o', true, Action::LeaveScan},
    {ui::key::kF5, false, Action::Rescan},
    {'r', true, Action::Rescan},
    {ui::key::kBackSpace, false, Action::GoOut},
    {ui::key::kUp, true, Action::GoOut},
    {ui::key::kHome, true, Action::GoToScannedFolder},
    {ui::key::kLeft, true, Action::GoToPrevious},
    {ui::key::kRight, true, Action::GoToNext},
    {'c', true, Action::CopyPath},
    {ui::key::kDelete, false, Action::MoveToTrash},
    {'z', true, Action::PutBackLast},
    {'1', true, Action::ShowMeasure, Measure::CurrentSize},
    {'2', true, Action::ShowMeasure, Measure::AddedLastMonth},
    {'3', true, Action::ShowMeasure, Measure::AddedLastSixMonths},
    {'4', true, Action::ShowMeasure, Measure::AddedSinceLastScan},
    {ui::key::kF10, false, Action::OpenApplicationMenu},
    {',', true, Action::OpenSettings},
    {ui::key::kF1, false, Action::ShowAbout},
    {ui::key::kEscape, false, Action::StopScan},
    {'q', true, Action::Close},
    {'w', true, Action::Close},
};

constexpr int kFunctionKeys = 12;

/// As it stands on a keyboard; without a name of its own, its character.
std::string nameOf(Keysym keysym) {
  if (keysym >= ui::key::kF1 && keysym < ui::key::kF1 + kFunctionKeys) {
    return "F" + std::to_string(keysym - ui::key::kF1 + 1);
  }
  switch (keysym) {
    case ui::key::kBackSpace:
      return "Backspace";
    case ui::key::kUp:
      return "Up";
    case ui::key::kLeft:
      return "Left";
    case ui::key::kRight:
      return "Right";
    case ui::key::kHome:
      return "Home";
    case ui::key::kDelete:
      return "Delete";
    case ui::key::kEscape:
      return "Escape";
    default:
      return {static_cast<char>(keysym >= 'a' && keysym <= 'z' ? keysym - 'a' + 'A' : keysym)};
  }
}

Keysym lowered(Keysym keysym) {
  return keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
}

}  // namespace

std::optional<Command> commandFor(const ui::KeyEvent& event) {
  const Keysym keysym = lowered(ui::key::plain(event.keysym));
  // The context menu, which is up to the view with the keyboard.
  if (keysym == ui::key::kF10 && event.shift) return std::nullopt;
  for (const Shortcut& shortcut : kShortcuts) {
    if (shortcut.keysym == keysym && shortcut.ctrl == event.ctrl)
      return Command{
          .action = shortcut.action, .measure = shortcut.measure, .by = Command::By::Key};
  }
  return std::nullopt;
}

std::string keyOf(const Command& command) {
  for (const Shortcut& shortcut : kShortcuts) {
    if (shortcut.action != command.action || shortcut.measure != command.measure) continue;
    return (shortcut.ctrl ? "Ctrl+" : "") + nameOf(shortcut.keysym);
  }
  return {};
}

bool isEnabled(const Command& command, const CommandState& state) {
  const ActionTraits& traits = traitsOf(command.action);
  if (traits.target == ActionTraits::Target::Item && command.target == sizewalk::kRootNode) {
    return false;
  }
  switch (traits.needs) {
    case Needs::Nothing:
      return true;
    case Needs::AScan:
      return state.scanShown;
    case Needs::ARunningScan:
      return state.scanShown && state.scanning;
    case Needs::AnEndedScan:
      return state.scanShown && !state.scanning && !state.stopping;
    case Needs::AFolderAround:
      return state.scanShown && state.canGoOut;
  }
  return false;
}

}  // namespace app
