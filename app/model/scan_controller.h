#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "sizewalk/tree_scanner.h"

namespace app {

/// What is known of a scan when it has ended. Times are seconds.
struct ScanSummary {
  std::uint64_t files = 0;    // items in the tree
  std::uint64_t folders = 0;  // subdirectories handed to the walk
  /// Entries and directories that could not be examined or read.
  std::uint64_t errors = 0;
  /// Hard-link duplicates, and the allocated bytes they would take if each counted for itself.
  std::uint64_t hardLinks = 0;
  std::uint64_t hardLinkBytes = 0;
  /// From the start of the background thread's work to this summary.
  double elapsedSeconds = 0;
  std::uint64_t systemCalls = 0;
  bool cancelled = false;
  /// When the folder was scanned to the end before, seconds since the epoch; 0 when that is not
  /// known.
  std::uint32_t lastScanTime = 0;
  /// Entries with a known birth time.
  std::uint64_t datedEntries = 0;
  /// Times a reader waited for room in the result queue, and the integrator for a result.
  std::uint64_t queueWaits = 0;
  std::uint64_t queueCounter = 0;
  // Spent by all readers together, then by the integrator.
  double pathSeconds = 0;
  double openSeconds = 0;
  double listSeconds = 0;
  double handOverSeconds = 0;
  double waitSeconds = 0;
  double integratorBusySeconds = 0;
  double integratorElapsedSeconds = 0;
  /// The listing strategy that was used, a `sizewalk::ListingStrategy`.
  std::uint32_t method = 0;
  /// The errno for which the folder could not be scanned at all, 0 when it could.
  std::uint32_t failure = 0;
  /// What `failure` means, for the user.
  std::string failureText;
};

/// Runs one scan at a time on a background thread and keeps the result where the window thread can
/// read it. All members are called on the window thread; only the callables are called on others.
class ScanController {
 public:
  /// `onProgress` is called on a thread of the walk every 100 ms, `onFinished` on the background
  /// thread as the last thing of a scan. Either may be empty. Both are kept until the controller is
  /// destroyed.
  ScanController(std::function<void(const sizewalk::ScanProgress&)> onProgress,
                 std::function<void()> onFinished);
  /// Stops a running scan and waits for its end.
  ~ScanController();
  ScanController(const ScanController&) = delete;
  ScanController& operator=(const ScanController&) = delete;

  /// Scans `path`, relative to the working directory or absolute; a symbolic link to a folder is
  /// scanned as that folder. A scan in progress is stopped first, and its tree dropped.
  void start(const std::string& path);
  /// Ends a running scan soon; what was found stays. Does not wait.
  void stop();
  /// Frees the tree and the summary of a scan that has ended; nothing while it has not.
  void drop();

  /// The current scan's scanner, until the next `start` replaces it; null before the first and
  /// after `drop`.
  const sizewalk::TreeScanner* scanner() const { return scanner_.get(); }
  sizewalk::TreeScanner* scanner() { return scanner_.get(); }
  /// Absolute path of the current scan, without "." and ".." and trailing slashes.
  const std::string& path() const { return path_; }
  /// From `start` until the next `start` has joined the thread.
  bool running() const { return running_; }
  /// The current scan has ended and its summary is in place.
  bool finished() const { return finished_.load(std::memory_order_acquire); }
  /// A scan is under way.
  bool scanning() const { return running_ && !finished(); }
  bool neverStarted() const { return neverStarted_; }
  /// Of the scan that finished; empty while `finished` is false.
  const ScanSummary& summary() const;

 private:
  void join();
  void run(sizewalk::TreeScanner* scanner, const std::string& path);
  void finish(const ScanSummary& summary);

  std::function<void(const sizewalk::ScanProgress&)> onProgress_;
  std::function<void()> onFinished_;
  std::unique_ptr<sizewalk::TreeScanner> scanner_;
  std::thread thread_;
  /// Written by the background thread before it sets `finished_`.
  ScanSummary summary_;
  std::string path_;
  bool running_ = false;
  /// Publishes `summary_`.
  std::atomic<bool> finished_{false};
  bool neverStarted_ = true;
};

/// `path` made absolute against the working directory, without "." and trailing slashes. The file
/// system is asked only where the path holds "..": a symbolic link may stand before it.
std::string absolutePath(const std::string& path);

}  // namespace app
