#include "app/dialogs/pending_dialogs.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "app/model/format.h"
#include "ui/widgets/message_dialog.h"

namespace app {

namespace {

/// As many as a window of the least size has room for.
constexpr std::size_t kMostFailuresTold = 4;

std::string counted(std::size_t count) {
  return formatCount(static_cast<std::int64_t>(count)) + (count == 1 ? " item" : " items");
}

std::string waiting(std::size_t count) {
  return counted(count) + (count == 1 ? " is" : " are") + " waiting to be deleted. ";
}

/// "PATH - ERROR" without the full stop that some errors end with.
std::string told(const TrashFailure& failure) {
  std::string text = readablePath(failure.path) + " - " + failure.error;
  if (text.ends_with('.')) text.pop_back();
  return text;
}

using Buttons = std::vector<ui::DialogButton>;

std::unique_ptr<ui::Overlay> question(ui::Connection& connection, const ui::Style& style,
                                      std::string title, std::string text, Buttons buttons) {
  const std::size_t cancel = buttons.size() - 1;
  buttons[cancel].kind = ui::ButtonKind::Default;
  return std::make_unique<ui::MessageDialog>(connection, style, std::move(title), std::move(text),
                                             std::move(buttons), cancel);
}

std::unique_ptr<ui::Overlay> settleQuestion(ui::Connection& connection, const ui::Style& style,
                                            std::string text, PendingChoices choices) {
  return question(connection, style, "Pending deletes", std::move(text),
                  {{"Delete Them", ui::ButtonKind::Plain, std::move(choices.deleteThem)},
                   {"Put Them Back", ui::ButtonKind::Plain, std::move(choices.putThemBack)},
                   {"Cancel", ui::ButtonKind::Plain, std::move(choices.cancel)}});
}

}  // namespace

std::string leaveScanText(std::size_t count) {
  return waiting(count) + "Leaving this scan deletes them immediately.";
}

std::string rescanFolderText(std::size_t count) {
  return waiting(count) + "Rescanning their folder deletes them immediately.";
}

std::string deleteNowText(std::size_t count) {
  return counted(count) +
         " will go to the trash straight away, without the rest of the countdown. This cannot be "
         "undone from here.";
}

std::string trashFailureText(std::span<const TrashFailure> failures) {
  if (failures.size() == 1) return told(failures.front()) + ". It is still where it was.";
  std::string text = counted(failures.size()) + " are still where they were.\n";
  for (const TrashFailure& failure : failures.first(std::min(failures.size(), kMostFailuresTold))) {
    text += "\n" + told(failure) + ".";
  }
  if (failures.size() > kMostFailuresTold) {
    const std::size_t more = failures.size() - kMostFailuresTold;
    text += "\n… and " + formatCount(static_cast<std::int64_t>(more)) + " more.";
  }
  return text;
}

std::unique_ptr<ui::Overlay> leaveScanQuestion(ui::Connection& connection, const ui::Style& style,
                                               std::size_t count, PendingChoices choices) {
  return settleQuestion(connection, style, leaveScanText(count), std::move(choices));
}

std::unique_ptr<ui::Overlay> rescanFolderQuestion(ui::Connection& connection,
                                                  const ui::Style& style, std::size_t count,
                                                  PendingChoices choices) {
  return settleQuestion(connection, style, rescanFolderText(count), std::move(choices));
}

std::unique_ptr<ui::Overlay> deleteNowQuestion(ui::Connection& connection, const ui::Style& style,
                                               std::size_t count,
                                               std::function<void()> deleteThem) {
  return question(connection, style, "Delete now?", deleteNowText(count),
                  {{"Delete Them", ui::ButtonKind::Plain, std::move(deleteThem)},
                   {"Cancel", ui::ButtonKind::Plain, {}}});
}

std::unique_ptr<ui::Overlay> trashFailureMessage(ui::Connection& connection, const ui::Style& style,
                                                 std::span<const TrashFailure> failures,
                                                 std::function<void()> told) {
  const char* const title =
      failures.size() == 1 ? "Could not move it to the trash" : "Could not move them to the trash";
  std::vector<ui::DialogButton> buttons = ui::okButton();
  buttons.front().action = std::move(told);
  return std::make_unique<ui::MessageDialog>(connection, style, title, trashFailureText(failures),
                                             std::move(buttons));
}

}  // namespace app
