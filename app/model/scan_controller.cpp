#include "app/model/scan_controller.h"

#include <utility>

#include "app/model/scan_path.h"

namespace app {

ScanController::ScanController(std::function<void(const sizewalk::ScanProgress&)> onProgress,
                               std::function<void()> onFinished)
    : reports_{std::move(onProgress), std::move(onFinished)} {}

ScanController::~ScanController() { drop(); }

void ScanController::start(const std::string& path) {
  drop();
  run_ = ScanRun::start(absolutePath(path), reports_, turns_);
  neverStarted_ = false;
}

bool ScanController::readAgain(sizewalk::NodeId folder) {
  return finished() && ScanRun::readAgain(run_, folder);
}

void ScanController::stop() {
  if (run_) run_->stop();
}

void ScanController::drop() {
  if (!run_) return;
  run_->retire();
  run_.reset();
}

std::shared_ptr<const sizewalk::FileTree> ScanController::tree() const {
  return run_ ? std::shared_ptr<const sizewalk::FileTree>(run_, &run_->scanner().tree()) : nullptr;
}

const ScanSummary& ScanController::summary() const {
  static const ScanSummary kNone;
  return finished() ? run_->summary() : kNone;
}

}  // namespace app
