#include "app/actions/update_check.h"

#include <unistd.h>

#include <utility>

#include "app/actions/update_request.h"
#include "app/model/product.h"
#include "app/model/settings.h"

namespace app {

namespace {

std::optional<UpdateAvailable> findUpdate(const std::string& address) {
  return parseUpdateAnswer(fetchUpdateAnswer(address), kProductVersion);
}

}  // namespace

UpdateCheck& UpdateCheck::instance() {
  static UpdateCheck check(SettingsStore::instance());
  return check;
}

UpdateCheck::UpdateCheck(const SettingsStore& settings, std::string flatpakInfo)
    : settings_(settings),
      flatpakInfo_(std::move(flatpakInfo)),
      answers_(findUpdate,
               [this](const std::string& /*address*/, std::optional<UpdateAvailable> answer) {
                 answered(std::move(answer));
               }) {}

bool UpdateCheck::mayAsk() const {
  return access(flatpakInfo_.c_str(), F_OK) != 0 && settings_.get(setting::kCheckForUpdates);
}

void UpdateCheck::check(const Callback& callback) {
  if (const std::optional<UpdateAvailable> update = replaceCallback(callback)) {
    if (callback) callback(*update);
    return;
  }
  if (started_ || !mayAsk()) return;
  started_ = true;
  // Nothing comes of it where no thread can be started.
  if (answers_.ask(updateAddress())) answered(std::nullopt);
}

/// What is known by then, of which the new callback has not been told.
std::optional<UpdateAvailable> UpdateCheck::replaceCallback(const Callback& callback) {
  const base::MutexLock lock(mutex_);
  callback_ = callback;
  return available_;
}

void UpdateCheck::forgetCallback() { replaceCallback(nullptr); }

bool UpdateCheck::finished() const {
  const base::MutexLock lock(mutex_);
  return finished_;
}

std::optional<UpdateAvailable> UpdateCheck::available() const {
  if (!settings_.get(setting::kCheckForUpdates)) return std::nullopt;
  const base::MutexLock lock(mutex_);
  return available_;
}

/// On the thread that asked the server, if there was one.
void UpdateCheck::answered(std::optional<UpdateAvailable> answer) {
  const base::MutexLock lock(mutex_);
  finished_ = true;
  available_ = std::move(answer);
  if (available_ && callback_) callback_(*available_);
}

}  // namespace app
