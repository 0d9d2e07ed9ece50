#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/mutex.h"
#include "sizewalk/directory_result.h"
#include "sizewalk/file_tree.h"
#include "sizewalk/folder_opener.h"
#include "sizewalk/result_queue.h"
#include "sizewalk/scan_options.h"
#include "sizewalk/walk_control.h"
#include "sizewalk/work_list.h"

namespace sizewalk {

/// What a running walk reports.
struct ScanProgress {
  std::uint64_t files = 0;    // the root's item count
  std::uint64_t folders = 0;  // published nodes that are not files
  std::uint64_t nodes = 0;    // published nodes
  std::uint64_t bytes = 0;    // the root's allocated size
};

/// Where the time of the last walk went, in nanoseconds of the monotonic clock, and how its queue
/// fared.
struct WalkStatistics {
  std::uint64_t integratorBusyNs = 0;
  std::uint64_t integratorElapsedNs = 0;
  /// Times a reader waited for room in the result queue.
  std::uint64_t queueWaits = 0;
  /// Times the integrator waited for a result.
  std::uint64_t emptyQueueWaits = 0;
  /// Calls made to open a folder, those on the way to one included.
  std::uint64_t opens = 0;
  // Summed over all readers:
  std::uint64_t pathNs = 0;      // finding the way to directories
  std::uint64_t openNs = 0;      // opening directories
  std::uint64_t listNs = 0;      // listing and examining entries
  std::uint64_t handOverNs = 0;  // pushing results, waits for room included
  std::uint64_t idleNs = 0;      // waiting for a directory to read
};

/// The number of reader threads: `asked` when it is 1 or more; else what `probe` says of the
/// storage, where it is set and answers above 0; else `processors` minus 2, kept within 1 and 8,
/// and 2 when `processors` is 0 (unknown).
int chooseReaderCount(int asked, const std::function<int()>& probe, unsigned processors);

/// Walks one folder tree with several threads and fills the file tree while it does.
///
/// N readers list directories, each into a `DirectoryResult` of its own; one integrator takes the
/// results and alone writes the tree, pushing the subdirectories it met back to the readers' work
/// list. Locking the tree per reader instead would make every reader pay for the roll-up; merging
/// per-thread trees at the end would leave nothing to look at while the walk runs.
class TreeScanner {
 public:
  /// `longestPause`: see `ResultQueue`.
  explicit TreeScanner(const ScanOptions& options,
                       std::chrono::milliseconds longestPause = ResultQueue::kLongestPause);
  TreeScanner(const TreeScanner&) = delete;
  TreeScanner& operator=(const TreeScanner&) = delete;

  /// Called about every 100 ms while a walk runs, on a thread of its own, and once when it starts.
  /// Set it before `walk`; while it is empty there is no such thread. One that
  /// throws std::bad_alloc is left out.
  std::function<void(const ScanProgress&)> onProgress;

  /// As `ScanOptions::setLastScanTime`, for an owner that has to ask a disk for the time. Before
  /// `setRoot`.
  void setLastScanTime(std::uint32_t time);

  /// Makes the tree's root: the absolute path of the folder, free of symbolic links in its last
  /// component. Call once, before `walk`.
  void setRoot(std::string rootPath, std::uint32_t birthTime = 0);

  /// Reads everything below `start` into the tree and returns when all is read or the walk was
  /// cancelled; what was read stays, but for the rest of a huge folder that was still on its way
  /// into the tree. A folder that was walked before is read anew: its old contents
  /// leave every total first, though not the memory. A mount point is entered when the walk starts
  /// there. Does nothing for a node that is not a visible directory. One walk at a time, on any
  /// thread.
  ///
  /// Returns 0, or the errno for which the walk was broken off: EAGAIN, before anything was read,
  /// where not even one reader and the integrator find threads (fewer readers than wanted do), and
  /// ENOMEM. After ENOMEM the tree holds what was read before, as after a cancel.
  int walk(NodeId start);

  /// Forgets that an earlier walk was cancelled. A cancel that comes from now on stops the next
  /// one, also before it has begun; `walk` itself forgets those that came since the last walk
  /// ended.
  void armWalk() { control_.arm(); }

  /// Ends the walk soon: no new directory is read, long ones are broken off. Any thread, never
  /// waits.
  void cancel() { control_.cancel(); }
  /// Whether the walk that runs, or ran last, was cancelled.
  bool cancelRequested() const { return control_.cancelRequested(); }

  const FileTree& tree() const { return tree_; }
  FileTree& tree() { return tree_; }
  const std::string& rootPath() const { return tree_.rootPath(); }
  /// Their last scan time may still change until `setRoot`.
  const ScanOptions& options() const { return options_; }
  /// Of the last walk; call it when none runs.
  WalkStatistics statistics() const;

 private:
  class Reader;

  void readAll(NodeId start, WorkList* workList);
  int readerCount() const;
  /// As many as are wanted and can be had. Where that is none, `error` says why.
  std::vector<std::thread> startReaders(WorkList* workList, int* error);
  std::thread startIntegrator(WorkList* workList, int* error);
  void breakOff(int error, WorkList* workList);
  template <typename Work>
  void runThread(WorkList* workList, Work work) noexcept;
  /// None when there is nobody to report to, or no thread to be had.
  std::thread startProgress();
  void stopProgress(std::thread* progressThread);
  void runReader(WorkList* workList);
  void runIntegrator(WorkList* workList);
  void runProgress();
  ScanProgress progress() const;
  std::unique_ptr<DirectoryResult> takeFreeResult(NodeId directory);
  void giveBack(std::unique_ptr<DirectoryResult> result);

  ScanOptions options_;
  const std::chrono::milliseconds longestPause_;
  FileTree tree_;
  WalkControl control_;
  // Of the current walk:
  std::unique_ptr<ResultQueue> results_;
  std::unique_ptr<FolderOpener> folders_;
  /// Why the current walk was broken off, the first reason; 0 when it was not.
  std::atomic<int> failure_{0};

  base::Mutex freeMutex_;  // guards freeResults_
  std::vector<std::unique_ptr<DirectoryResult>> freeResults_ GUARDED_BY(freeMutex_);

  mutable base::Mutex statisticsMutex_;  // guards statistics_
  WalkStatistics statistics_ GUARDED_BY(statisticsMutex_);

  base::Mutex progressMutex_;  // lets the end of the walk cut a progress pause short
  base::CondVar progressStopped_;
  bool stopProgress_ GUARDED_BY(progressMutex_) = false;
};

}  // namespace sizewalk
