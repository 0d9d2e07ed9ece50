#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/actions/pending_deletes.h"
#include "app/dialogs/pending_dialogs.h"
#include "ui/connection.h"
#include "ui/widgets/overlay.h"
#include "ui/widgets/style.h"

namespace app {

/// What the user is asked and told about pending deletes, and what follows from the answers.
/// Window thread only.
class PendingQuestions {
 public:
  /// Puts a dialog over the window.
  using Open = std::function<void(std::unique_ptr<ui::Overlay>)>;
  using Continuation = std::function<void()>;

  /// All outlive this, which outlives the dialogs.
  PendingQuestions(ui::Connection& connection, const ui::Style& style, PendingDeletes& pending,
                   Open open);

  /// Has what waits settled before the shown scan is left. With nothing waiting, runs
  /// `continuation` at once and returns true. Otherwise asks, with the countdown standing still,
  /// and returns false: `continuation` runs after "Delete Them" and "Put Them Back", not after
  /// "Cancel". A question that is open already stays, and the newer continuation is the one it is
  /// about.
  bool settleBefore(Continuation continuation);
  /// The same for what waits inside the folder `path`, which is to be read again.
  bool settleWithin(const std::string& path, Continuation continuation);
  /// Asks whether all is to be deleted now. Nothing when nothing waits.
  void confirmDeleteNow();

  /// An item could not be trashed: it is told of with the next `tick`, together with all others
  /// until then and those that fail while an earlier message stands.
  void failed(const std::string& path, const std::string& error);
  void tick();
  /// Runs `then` once the user has closed the message of what has failed so far, at once when there
  /// is none: for an end that would take the message away with the window.
  void afterFailures(Continuation then);

 private:
  /// One that is open. Its dialog owns it, so that it ends with it, whatever closes that.
  struct Question {
    std::optional<std::string> folder;  // nothing: the whole list
    Continuation continuation;
    std::shared_ptr<const void> pause;
  };

  bool settle(std::optional<std::string> folder, Continuation continuation);
  PendingChoices choicesOf(const std::shared_ptr<Question>& question);
  void reportFailures();
  bool reporting() const { return !message_.expired(); }

  ui::Connection& connection_;
  const ui::Style& style_;
  PendingDeletes& pending_;
  const Open open_;
  std::weak_ptr<Question> question_;
  std::vector<TrashFailure> failures_;
  /// Lives as long as the message that stands.
  std::weak_ptr<const void> message_;
  Continuation afterFailures_;
};

}  // namespace app
