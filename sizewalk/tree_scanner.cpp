#include "sizewalk/tree_scanner.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <new>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

#include "sizewalk/directory_reader.h"
#include "sizewalk/storage_probe.h"

namespace sizewalk {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kFreeResults = 256;
/// A result that grew beyond this many entries is not kept for reuse: in time every kept one would
/// have met a large directory, and all of them together would hold more memory than the tree.
constexpr std::size_t kReusableEntries = 256;
constexpr std::size_t kBufferAlignment = 16;
constexpr auto kProgressInterval = std::chrono::milliseconds(100);

std::uint64_t nanoseconds(Clock::duration duration) {
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count());
}

/// A thread of `work`; none, and `error` says why, where none is to be had, or no memory for one.
template <typename Work>
std::thread threadOf(Work work, int* error) {
  try {
    return std::thread(std::move(work));
  } catch (const std::system_error&) {
    *error = EAGAIN;
  } catch (const std::bad_alloc&) {
    *error = ENOMEM;
  }
  return {};
}

/// Tells how long each step of a thread took, with one reading of the clock between two steps.
class StepTimer {
 public:
  /// Adds the time since the last call, or construction, to `total`.
  void addTo(std::uint64_t* total) {
    const Clock::time_point now = Clock::now();
    *total += nanoseconds(now - last_);
    last_ = now;
  }

 private:
  Clock::time_point last_ = Clock::now();
};

/// Lets the control forget a walk's list, before that goes.
class ListInUse {
 public:
  explicit ListInUse(WalkControl* control) : control_(*control) {}
  ~ListInUse() { control_.end(); }
  ListInUse(const ListInUse&) = delete;
  ListInUse& operator=(const ListInUse&) = delete;

 private:
  WalkControl& control_;
};

}  // namespace

int chooseReaderCount(int asked, const std::function<int()>& probe, unsigned processors) {
  if (asked >= 1) return asked;
  if (probe) {
    const int answer = probe();
    if (answer > 0) return answer;
  }
  if (processors == 0) return 2;
  return std::clamp(static_cast<int>(processors) - 2, 1, 8);
}

/// One reader thread's own things.
class TreeScanner::Reader {
 public:
  Reader(TreeScanner* scanner, WorkList* workList)
      : scanner_(*scanner),
        workList_(*workList),
        rules_{scanner->options_.dedupeHardLinks, &workList->closedFlag()},
        blocks_((scanner->options_.readBufferSize + kBufferAlignment - 1) / kBufferAlignment) {}

  void run() {
    NodeId directory = kRootNode;
    StepTimer timer;
    while (nextDirectory(&directory)) {
      timer.addTo(&times_.idleNs);
      std::unique_ptr<DirectoryResult> result = scanner_.takeFreeResult(directory);
      scanner_.folders_->find(directory, &way_);
      timer.addTo(&times_.pathNs);
      read(result.get(), &timer);
      scanner_.results_->push(std::move(result));
      timer.addTo(&times_.handOverNs);
    }
    timer.addTo(&times_.idleNs);
  }

  const WalkStatistics& times() const { return times_; }
  std::uint64_t opens() const { return way_.opens; }

 private:
  bool nextDirectory(NodeId* directory) {
    if (workList_.tryPop(directory)) return true;
    scanner_.results_->flush();  // what is to be read next may lie in results not yet integrated
    return workList_.pop(directory);
  }

  /// Opens, lists and gives back the directory that `way_` leads to. By the time its result is
  /// pushed it is kept for those in it.
  void read(DirectoryResult* result, StepTimer* timer) {
    base::FileDescriptor fd = scanner_.folders_->open(&way_);
    timer->addTo(&times_.openNs);
    if (fd.valid()) {
      readDirectory(rules_, fd.get(), result, std::as_writable_bytes(std::span(blocks_)));
    } else {
      result->unreadable = true;
      ++result->errors;
    }
    scanner_.folders_->giveBack(way_, std::move(fd), result->subdirectories.size());
    timer->addTo(&times_.listNs);
  }

  struct alignas(kBufferAlignment) Block {
    std::byte bytes[kBufferAlignment];
  };

  TreeScanner& scanner_;
  WorkList& workList_;
  ReadRules rules_;
  std::vector<Block> blocks_;
  FolderWay way_;
  WalkStatistics times_;
};

TreeScanner::TreeScanner(const ScanOptions& options, std::chrono::milliseconds longestPause)
    : options_(options), longestPause_(longestPause), tree_(options) {}

void TreeScanner::setLastScanTime(std::uint32_t time) {
  options_.setLastScanTime(time);
  tree_.setLastScanTime(time);
}

void TreeScanner::setRoot(std::string rootPath, std::uint32_t birthTime) {
  tree_.createRoot(std::move(rootPath), birthTime);
}

int TreeScanner::walk(NodeId start) {
  control_.arm();
  failure_ = 0;
  try {
    WorkList workList(start);
    control_.begin(&workList);
    const ListInUse inUse(&control_);
    // A walk that was cancelled by now leaves what an earlier one found.
    if (!workList.closedFlag() && tree_.dropContents(start)) readAll(start, &workList);
  } catch (const std::bad_alloc&) {  // no thread of the walk runs
    failure_ = ENOMEM;
  }
  return failure_;
}

void TreeScanner::readAll(NodeId start, WorkList* workList) {
  results_ = std::make_unique<ResultQueue>(longestPause_);
  folders_ = std::make_unique<FolderOpener>(tree_, start, workList->closedFlag());
  {
    const base::MutexLock lock(statisticsMutex_);
    statistics_ = {};
  }
  std::thread progressThread = startProgress();
  // First, so that where threads are scarce the readers do not take its.
  int error = 0;
  std::vector<std::thread> readers;
  std::thread integrator = startIntegrator(workList, &error);
  if (integrator.joinable()) readers = startReaders(workList, &error);
  if (readers.empty()) breakOff(error, workList);

  for (std::thread& reader : readers) reader.join();
  results_->close();
  if (integrator.joinable()) integrator.join();
  stopProgress(&progressThread);
  // Asked for before the lock is taken, so that two mutexes are never held at once.
  const std::uint64_t queueWaits = results_->producerWaits();
  const std::uint64_t emptyQueueWaits = results_->consumerWaits();
  folders_.reset();  // a disk is not kept busy beyond the walk
  const base::MutexLock lock(statisticsMutex_);
  statistics_.queueWaits = queueWaits;
  statistics_.emptyQueueWaits = emptyQueueWaits;
}

int TreeScanner::readerCount() const {
  std::function<int()> probe;
  if (!rootPath().empty()) probe = [this] { return probeReaderThreads(rootPath()); };
  return chooseReaderCount(options_.threads, probe, std::thread::hardware_concurrency());
}

std::vector<std::thread> TreeScanner::startReaders(WorkList* workList, int* error) {
  std::vector<std::thread> readers;
  try {
    const auto wanted = static_cast<std::size_t>(readerCount());
    readers.reserve(wanted);
    while (readers.size() < wanted) {
      std::thread reader =
          threadOf([this, workList] { runThread(workList, [&] { runReader(workList); }); }, error);
      if (!reader.joinable()) break;
      readers.push_back(std::move(reader));
    }
  } catch (const std::bad_alloc&) {  // before the first of them
    *error = ENOMEM;
  }
  return readers;
}

std::thread TreeScanner::startIntegrator(WorkList* workList, int* error) {
  return threadOf([this, workList] { runThread(workList, [&] { runIntegrator(workList); }); },
                  error);
}

/// Has the readers take no new directories, and nobody wait for the integrator, which may be gone.
void TreeScanner::breakOff(int error, WorkList* workList) {
  int none = 0;
  failure_.compare_exchange_strong(none, error);
  workList->close();
  results_->close();
}

/// Runs a thread's work. A walk that has no memory left ends: a tree without what one of its
/// threads was doing would show numbers that are not true.
template <typename Work>
void TreeScanner::runThread(WorkList* workList, Work work) noexcept {
  try {
    work();
  } catch (const std::bad_alloc&) {
    breakOff(ENOMEM, workList);
  }
}

std::thread TreeScanner::startProgress() {
  if (!onProgress) return {};
  {
    const base::MutexLock lock(progressMutex_);
    stopProgress_ = false;
  }
  int error = 0;
  return threadOf([this] { runProgress(); }, &error);
}

void TreeScanner::stopProgress(std::thread* progressThread) {
  if (!progressThread->joinable()) return;
  {
    const base::MutexLock lock(progressMutex_);
    stopProgress_ = true;
  }
  progressStopped_.notifyAll();
  progressThread->join();
}

void TreeScanner::runReader(WorkList* workList) {
  Reader reader(this, workList);
  reader.run();
  const WalkStatistics& times = reader.times();
  const base::MutexLock lock(statisticsMutex_);
  statistics_.opens += reader.opens();
  statistics_.pathNs += times.pathNs;
  statistics_.openNs += times.openNs;
  statistics_.listNs += times.listNs;
  statistics_.handOverNs += times.handOverNs;
  statistics_.idleNs += times.idleNs;
}

void TreeScanner::runIntegrator(WorkList* workList) {
  std::vector<NodeId> subdirectories;
  std::uint64_t busyNs = 0;
  const Clock::time_point started = Clock::now();
  while (std::unique_ptr<DirectoryResult> result = results_->pop()) {
    StepTimer timer;
    tree_.addChildren(*result, &subdirectories, &workList->closedFlag());
    workList->pushAll(subdirectories);
    workList->done();
    timer.addTo(&busyNs);
    giveBack(std::move(result));
  }
  const base::MutexLock lock(statisticsMutex_);
  statistics_.integratorBusyNs = busyNs;
  statistics_.integratorElapsedNs = nanoseconds(Clock::now() - started);
}

void TreeScanner::runProgress() {
  while (true) {
    try {
      onProgress(progress());
    } catch (const std::bad_alloc&) {  // a report that is left out harms nothing
    }
    const base::MutexLock lock(progressMutex_);
    const Clock::time_point next = Clock::now() + kProgressInterval;
    while (!stopProgress_ && Clock::now() < next) progressStopped_.waitUntil(progressMutex_, next);
    if (stopProgress_) return;
  }
}

ScanProgress TreeScanner::progress() const {
  const auto nodes = std::uint64_t{tree_.nodeCount()};
  const auto files = static_cast<std::uint64_t>(tree_.itemCount(kRootNode));
  return {files, nodes - std::min(files, nodes), nodes, tree_.allocatedSize(kRootNode)};
}

std::unique_ptr<DirectoryResult> TreeScanner::takeFreeResult(NodeId directory) {
  std::unique_ptr<DirectoryResult> result;
  {
    const base::MutexLock lock(freeMutex_);
    if (!freeResults_.empty()) {
      result = std::move(freeResults_.back());
      freeResults_.pop_back();
    }
  }
  if (!result) result = std::make_unique<DirectoryResult>();
  result->reset(directory);
  return result;
}

void TreeScanner::giveBack(std::unique_ptr<DirectoryResult> result) {
  if (result->entries.capacity() > kReusableEntries) return;
  const base::MutexLock lock(freeMutex_);
  if (freeResults_.size() < kFreeResults) freeResults_.push_back(std::move(result));
}

WalkStatistics TreeScanner::statistics() const {
  const base::MutexLock lock(statisticsMutex_);
  return statistics_;
}

}  // namespace sizewalk
