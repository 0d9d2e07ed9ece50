#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "app/model/scan_summary.h"
#include "app/model/scan_turns.h"
#include "base/mutex.h"
#include "sizewalk/tree_scanner.h"

namespace app {

/// What is told of a scan on its threads. Either may be empty. They only hand on what they are
/// told: a lock is held, and the scan's owner belongs to another thread.
struct ScanReports {
  /// On a thread of the walk every 100 ms.
  std::function<void(const sizewalk::ScanProgress&)> onProgress;
  /// On the scan's thread when the summary is in place, each time it has finished.
  std::function<void()> onFinished;
};

/// One scan of one folder, on a thread of its own. It is held by that thread, by whoever started it
/// and by whoever looks at its tree: a file system that does not answer keeps the thread and what
/// it uses, and nobody else.
class ScanRun {
 public:
  /// Begins to scan `path`, which is absolute and may hold "..". Where no threads are to be had, or
  /// memory runs out, the scan has failed. The tree is freed by the last who lets go of it; a large
  /// one, which takes a while, on a thread of its own.
  static std::shared_ptr<ScanRun> start(const std::string& path, ScanReports reports,
                                        std::shared_ptr<ScanTurns> turns);

  /// Has `run`, which has finished, read one of its folders again, whose contents are forgotten at
  /// once, on another thread. Until that has ended the run is not finished, and then it has a new
  /// summary: that of a stopped scan where no threads are to be had, that of a broken one where
  /// memory ran out. Returns false, changing nothing, when the tree shows no such folder.
  static bool readAgain(const std::shared_ptr<ScanRun>& run, sizewalk::NodeId folder);

  ScanRun(const std::string& path, ScanReports reports, std::shared_ptr<ScanTurns> turns);
  ScanRun(const ScanRun&) = delete;
  ScanRun& operator=(const ScanRun&) = delete;

  /// Ends the scan soon; what was found stays. Any thread, does not wait.
  void stop();
  /// Stops, and reports nothing any more; a report that is under way has ended when it returns.
  void retire();

  const sizewalk::TreeScanner& scanner() const { return scanner_; }
  sizewalk::TreeScanner& scanner() { return scanner_; }
  /// The path that was asked for, without ".." as soon as the file system has said where that
  /// leads. Any thread.
  std::string path() const;
  /// The summary is in place. Any thread.
  bool finished() const { return finished_.load(std::memory_order_acquire); }
  /// To be read once `finished`.
  const ScanSummary& summary() const { return summary_; }

 private:
  /// The work of the scan's thread: takes its turn, does `work` and finishes.
  void run(const std::function<ScanSummary()>& work);
  ScanSummary scan();
  std::string findPath();
  void finish(ScanSummary summary);

  const std::shared_ptr<ScanTurns> turns_;
  const std::string askedPath_;
  sizewalk::TreeScanner scanner_;

  mutable base::Mutex pathMutex_;  // guards path_
  std::string path_ GUARDED_BY(pathMutex_);

  base::Mutex reportsMutex_;  // guards reports_, and is held while one is made
  ScanReports reports_ GUARDED_BY(reportsMutex_);

  /// Written by the scan's thread before it sets `finished_`.
  ScanSummary summary_;
  /// Publishes `summary_`.
  std::atomic<bool> finished_{false};
};

}  // namespace app
