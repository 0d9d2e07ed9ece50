#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "ui/connection.h"
#include "ui/widgets/overlay.h"
#include "ui/widgets/style.h"

// What is asked and told about items that wait to be deleted. In each question Enter and Escape
// press "Cancel". A button closes its dialog before it acts. `connection` and `style` outlive the
// dialogs.

namespace app {

/// What the buttons of a question do; any may be empty.
struct PendingChoices {
  std::function<void()> deleteThem;
  std::function<void()> putThemBack;
  std::function<void()> cancel;
};

/// What is to be done with `count` waiting items before the shown scan is left?
std::unique_ptr<ui::Overlay> leaveScanQuestion(ui::Connection& connection, const ui::Style& style,
                                               std::size_t count, PendingChoices choices);
/// The same before a folder that holds them is read again.
std::unique_ptr<ui::Overlay> rescanFolderQuestion(ui::Connection& connection,
                                                  const ui::Style& style, std::size_t count,
                                                  PendingChoices choices);
/// Shall `count` items go without the rest of their countdown?
std::unique_ptr<ui::Overlay> deleteNowQuestion(ui::Connection& connection, const ui::Style& style,
                                               std::size_t count, std::function<void()> deleteThem);

/// An item that could not be trashed.
struct TrashFailure {
  /// Bytes.
  std::string path;
  /// A sentence.
  std::string error;
};

/// Tells of all `failures`, of which there is at least one; calls `told` when it is closed.
std::unique_ptr<ui::Overlay> trashFailureMessage(ui::Connection& connection, const ui::Style& style,
                                                 std::span<const TrashFailure> failures,
                                                 std::function<void()> told);

// The texts.

std::string leaveScanText(std::size_t count);
std::string rescanFolderText(std::size_t count);
std::string deleteNowText(std::size_t count);
/// Of many failures the first few, and how many more there are.
std::string trashFailureText(std::span<const TrashFailure> failures);

}  // namespace app
