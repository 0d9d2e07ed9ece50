#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/actions/update_answer.h"
#include "app/model/settings_store.h"
#include "base/mutex.h"
#include "base/owed_answers.h"

namespace app {

/// The file by which a program knows that it runs inside Flatpak, where updates come from
/// elsewhere.
inline constexpr char kFlatpakInfo[] = "/.flatpak-info";

/// Asks the update server, once in the run of the program, whether there is a newer version. A
/// check that fails, for whatever reason, says nothing. Used by the window thread.
class UpdateCheck {
 public:
  /// Takes a found update, in the call of `check` or on a thread of the check's own; there with
  /// locks held, so it hands the update on and neither uses the check nor waits for a thread that
  /// does.
  using Callback = std::function<void(const UpdateAvailable&)>;

  /// The program's check.
  static UpdateCheck& instance();

  /// One of a test's own. `settings` outlives it; where the file `flatpakInfo` exists the program
  /// runs inside Flatpak.
  explicit UpdateCheck(const SettingsStore& settings, std::string flatpakInfo = kFlatpakInfo);
  /// Returns without waiting for the server or the program that asks it, as `forgetCallback`.
  ~UpdateCheck() = default;
  UpdateCheck(const UpdateCheck&) = delete;
  UpdateCheck& operator=(const UpdateCheck&) = delete;

  /// Has `callback` told of an update instead of the callback before it, at once when one is known.
  /// The first call that may asks the server, and returns without waiting for it: none may inside
  /// Flatpak or while the user does not want it.
  void check(const Callback& callback);
  /// After this no callback is called, until the next `check`; a call under way has ended. For the
  /// owner of what the callback uses, before that goes.
  void forgetCallback();

  /// Whether the server has been asked and has answered or failed to.
  bool finished() const;
  /// The update, once one is known, while the user wants to know of any.
  std::optional<UpdateAvailable> available() const;

 private:
  using Answers = base::OwedAnswers<std::string, std::optional<UpdateAvailable>>;

  bool mayAsk() const;
  std::optional<UpdateAvailable> replaceCallback(const Callback& callback);
  void answered(std::optional<UpdateAvailable> answer);

  const SettingsStore& settings_;
  const std::string flatpakInfo_;
  bool started_ = false;
  mutable base::Mutex mutex_;  // guards what is below, and is held while the thread calls callback_
  Callback callback_ GUARDED_BY(mutex_);
  bool finished_ GUARDED_BY(mutex_) = false;
  std::optional<UpdateAvailable> available_ GUARDED_BY(mutex_);
  /// Last, for it ends first: its thread uses what is above. By address.
  Answers answers_;
};

}  // namespace app
