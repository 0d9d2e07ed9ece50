#include "app/model/scan_run.h"

#include <cerrno>
#include <chrono>
#include <new>
#include <utility>

#include "app/model/parallel.h"
#include "app/model/scan_path.h"
#include "base/detached_threads.h"
#include "sizewalk/scan_history.h"

namespace app {

namespace {

using Clock = std::chrono::steady_clock;

/// A tree of fewer nodes is freed in less than a millisecond.
constexpr sizewalk::NodeId kLargeTree = 100'000;

/// What `work` returns; where memory runs out, that this was so.
ScanSummary madeBy(const std::function<ScanSummary()>& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return summaryOfFailure(ENOMEM);
  }
}

struct FreeBeside {
  void operator()(ScanRun* run) const {
    std::unique_ptr<ScanRun> owned(run);
    if (owned->scanner().tree().nodeCount() < kLargeTree) return;
    base::startDetached([owned = std::move(owned)]() mutable {
      giveWayToWindow();
      owned.reset();
    });
  }
};

}  // namespace

std::shared_ptr<ScanRun> ScanRun::start(const std::string& path, ScanReports reports,
                                        std::shared_ptr<ScanTurns> turns) {
  std::shared_ptr<ScanRun> run(
      std::make_unique<ScanRun>(path, std::move(reports), std::move(turns)).release(),
      FreeBeside());
  const auto scan = [run] { run->run([&] { return run->scan(); }); };
  if (!base::startDetached(scan)) run->finish(summaryOfFailure(EAGAIN));
  return run;
}

bool ScanRun::readAgain(const std::shared_ptr<ScanRun>& run, sizewalk::NodeId folder) {
  // Now, so that nothing inside can be taken out that the reading would find again.
  if (!run->scanner_.tree().dropContents(folder)) return false;
  run->finished_ = false;
  run->scanner_.armWalk();  // here and not on the thread: it may be stopped before that has begun
  // What a scan that was stopped has left out is still missing.
  const bool incomplete = run->summary_.cancelled;
  const auto read = [run, folder, incomplete] {
    run->run([&] {
      const int error = run->scanner_.walk(folder);
      if (error == ENOMEM) return summaryOfBreak(run->scanner_, error);
      ScanSummary summary = summaryOf(run->scanner_);
      summary.cancelled = summary.cancelled || incomplete || error != 0;
      return summary;
    });
  };
  if (base::startDetached(read)) return true;
  ScanSummary summary = run->summary_;
  summary.cancelled = true;
  run->finish(std::move(summary));
  return true;
}

ScanRun::ScanRun(const std::string& path, ScanReports reports, std::shared_ptr<ScanTurns> turns)
    : turns_(std::move(turns)),
      askedPath_(path),
      scanner_(sizewalk::ScanOptions()),
      path_(path),
      reports_(std::move(reports)) {
  if (!reports_.onProgress) return;
  scanner_.onProgress = [this](const sizewalk::ScanProgress& progress) {
    const base::MutexLock lock(reportsMutex_);
    if (reports_.onProgress) reports_.onProgress(progress);
  };
}

void ScanRun::stop() {
  scanner_.cancel();
  turns_->cancelled();
}

void ScanRun::retire() {
  stop();
  const base::MutexLock lock(reportsMutex_);
  reports_ = {};
}

std::string ScanRun::path() const {
  const base::MutexLock lock(pathMutex_);
  return path_;
}

void ScanRun::run(const std::function<ScanSummary()>& work) {
  giveWayToWindow();
  const Clock::time_point started = Clock::now();
  ScanSummary summary = madeBy([&] {
    if (!turns_->take(askedPath_, scanner_)) return summaryOf(scanner_);
    ScanSummary made = madeBy(work);
    turns_->giveBack(askedPath_);
    return made;
  });
  summary.elapsedSeconds = std::chrono::duration<double>(Clock::now() - started).count();
  finish(std::move(summary));
}

ScanSummary ScanRun::scan() {
  const std::string path = findPath();
  scanner_.setLastScanTime(sizewalk::lastScanTime(path));
  ResolvedFolder folder = resolveFolder(path);
  if (folder.error != 0) return summaryOfFailure(folder.error);
  scanner_.setRoot(std::move(folder.path), folder.birthTime);
  if (const int error = scanner_.walk(sizewalk::kRootNode); error != 0) {
    return summaryOfBreak(scanner_, error);
  }
  ScanSummary summary = summaryOf(scanner_);
  if (!summary.cancelled) sizewalk::recordScan(path, 0);
  return summary;
}

std::string ScanRun::findPath() {
  std::string path = withoutWaysUp(askedPath_);
  const base::MutexLock lock(pathMutex_);
  path_ = path;
  return path;
}

void ScanRun::finish(ScanSummary summary) {
  summary_ = std::move(summary);
  finished_.store(true, std::memory_order_release);
  const base::MutexLock lock(reportsMutex_);
  if (reports_.onFinished) reports_.onFinished();
}

}  // namespace app
