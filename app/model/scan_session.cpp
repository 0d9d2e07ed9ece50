#include "app/model/scan_session.h"

#include <chrono>
#include <utility>

#include "app/model/scan_path.h"

namespace app {

// The session follows the tree by itself, so the scan's progress reports go nowhere.
ScanSession::ScanSession(Post post, Now now)
    : now_(std::move(now)),
      controller_({}, [this, post = std::move(post)] { post([this] { lookAtEnd(); }); }) {}

void ScanSession::start(const std::string& path) {
  controller_.start(path);
  phase_ = ScanPhase::Scanning;
  readingAgain_ = false;
  path_ = absolutePath(path);
  started_ = now_();
  seenNodes_ = 0;
}

void ScanSession::readAgain(sizewalk::NodeId folder) {
  if (phase_ != ScanPhase::Ended || !controller_.readAgain(folder)) return;
  phase_ = ScanPhase::Scanning;
  readingAgain_ = true;
  started_ = now_();
}

void ScanSession::stop() {
  if (phase_ != ScanPhase::Scanning) return;
  controller_.stop();
  phase_ = ScanPhase::Stopping;
  stopped_ = now_();
}

void ScanSession::leave() {
  controller_.drop();
  phase_ = ScanPhase::None;
  path_.clear();
}

void ScanSession::follow() {
  if (!underWay()) return;
  lookAtPath();
  lookAtTree();
}

void ScanSession::lookAtPath() {
  std::string path = controller_.path();
  if (path == path_) return;
  path_ = std::move(path);
  if (onPathFound) onPathFound();
}

void ScanSession::lookAtTree() {
  // The look at the end is the last.
  if (controller_.finished()) return;
  const sizewalk::NodeId nodes = controller_.scanner()->tree().nodeCount();
  if (nodes == seenNodes_ || !pacer_.due(now_())) return;
  seenNodes_ = nodes;
  if (onGrown) onGrown();
}

sizewalk::FileTree* ScanSession::treeToChange() {
  return controller_.scanner() ? &controller_.scanner()->tree() : nullptr;
}

// Posted by a scan as its last report: another may have taken its place since then.
void ScanSession::lookAtEnd() {
  if (!underWay() || !controller_.finished()) return;
  lookAtPath();
  phase_ = summary().failure == 0 || foundSomething() ? ScanPhase::Ended : ScanPhase::Failed;
  if (onEnded) onEnded();
}

/// Items of a tree may wait to be deleted: it is not to be taken away by itself.
bool ScanSession::foundSomething() const {
  return readingAgain_ || controller_.scanner()->tree().nodeCount() > 1;
}

ScanStatus ScanSession::status() const {
  switch (phase_) {
    case ScanPhase::Scanning:
      return {.scanning = true, .readingAgain = readingAgain_};
    case ScanPhase::Stopping:
      return {.elapsedSeconds = std::chrono::duration<double>(stopped_ - started_).count(),
              .stopped = true};
    case ScanPhase::None:
    case ScanPhase::Ended:
    case ScanPhase::Failed:
      break;
  }
  return {.elapsedSeconds = summary().elapsedSeconds,
          .hardLinks = static_cast<std::int64_t>(summary().hardLinks),
          .hardLinkBytes = static_cast<std::int64_t>(summary().hardLinkBytes),
          .unreadable = static_cast<std::int64_t>(summary().errors),
          .stopped = summary().cancelled || summary().failure != 0,
          .scannedBefore = summary().lastScanTime != 0};
}

}  // namespace app
