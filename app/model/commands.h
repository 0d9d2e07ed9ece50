#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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
  Open,
  ShowInFiles,
  /// Reads the target again.
  RescanFolder,
  /// The target, or all that is selected when the target is among it or there is none.
  MoveToTrash,
  /// Puts back what waits to be deleted since last.
  PutBackLast,
  ShowMeasure,
  OpenMeasureMenu,
  OpenApplicationMenu,
  OpenSettings,
  ShowAbout,
  Close,
};

/// What has to be there for an action to make sense.
enum class Needs : std::uint8_t {
  Nothing,
  AScan,
  ARunningScan,
  AnEndedScan,
  /// The focused folder lies in another one of the scan.
  AFolderAround,
};

/// What is to be known of an action wherever it is offered: its words, empty where it has none of
/// its own, and when it is enabled. This is all of them: menus and toolbar only choose from here.
struct ActionTraits {
  /// What a target is to the action: an item in a folder of the scan, which the scanned folder is
  /// not, or any folder.
  enum class Target : std::uint8_t { Item, Any };

  Action action;
  std::string_view label;
  Needs needs;
  Target target = Target::Any;
};

inline constexpr ActionTraits kActions[] = {
    {Action::LeaveScan, "Open…", Needs::AScan},
    {Action::StopScan, "Stop", Needs::ARunningScan},
    {Action::Rescan, "Rescan", Needs::AScan},
    {Action::GoOut, "↑", Needs::AFolderAround},
    {Action::GoToScannedFolder, "", Needs::AFolderAround},
    {Action::GoToPrevious, "", Needs::AScan},
    {Action::GoToNext, "", Needs::AScan},
    {Action::GoTo, "", Needs::AScan},
    {Action::CopyPath, "Copy Path", Needs::AScan, ActionTraits::Target::Item},
    {Action::Open, "Open", Needs::AScan, ActionTraits::Target::Item},
    {Action::ShowInFiles, "Show in Files", Needs::AScan, ActionTraits::Target::Item},
    {Action::RescanFolder, "Rescan This Folder", Needs::AnEndedScan, ActionTraits::Target::Item},
    {Action::MoveToTrash, "Move to Trash", Needs::AScan, ActionTraits::Target::Item},
    {Action::PutBackLast, "", Needs::AScan},
    {Action::ShowMeasure, "", Needs::AScan},
    {Action::OpenMeasureMenu, "", Needs::AScan},
    {Action::OpenApplicationMenu, "☰", Needs::Nothing},
    {Action::OpenSettings, "Settings…", Needs::Nothing},
    {Action::ShowAbout, "About Heap Gauge", Needs::Nothing},
    {Action::Close, "", Needs::Nothing},
};

/// The entry of `action`; each has one.
constexpr const ActionTraits& traitsOf(Action action) {
  const ActionTraits* traits = kActions;
  while (traits->action != action) ++traits;
  return *traits;
}
constexpr std::string_view labelOf(Action action) { return traitsOf(action).label; }

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

/// The key of a command as it is written beside it, such as "Ctrl+O"; of several the first one of
/// the table that `commandFor` looks in, empty where there is none.
std::string keyOf(const Command& command);

/// What the enabling of commands depends on.
struct CommandState {
  bool scanShown = false;
  bool scanning = false;
  /// It was stopped, but its threads have not ended yet.
  bool stopping = false;
  bool canGoOut = false;
};

/// Whether the command makes sense now. One that names the scanned folder as its item never does:
/// it can neither be opened, shown, read again in part nor trashed.
bool isEnabled(const Command& command, const CommandState& state);

}  // namespace app
