#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/model/scan_run.h"
#include "app/model/scan_summary.h"
#include "app/model/scan_turns.h"
#include "sizewalk/tree_scanner.h"

namespace app {

/// Runs one scan at a time in the background and keeps the result where the window thread can read
/// it. All members are called on the window thread; none of them waits for a disk or a thread that
/// does. A scan that is replaced or dropped while a file system does not answer is retired: it ends
/// when it can, its results go nowhere, and its memory is freed then.
class ScanController {
 public:
  /// See `ScanReports`. Both are kept until the controller is destroyed, and not called afterwards.
  ScanController(std::function<void(const sizewalk::ScanProgress&)> onProgress,
                 std::function<void()> onFinished);
  /// As `drop`.
  ~ScanController();
  ScanController(const ScanController&) = delete;
  ScanController& operator=(const ScanController&) = delete;

  /// Scans `path`, relative to the working directory or absolute; a symbolic link to a folder is
  /// scanned as that folder. The scan before is dropped first.
  void start(const std::string& path);
  /// Reads a folder of the current scan's tree again, once that has finished: until then the scan
  /// is unfinished again. False, and nothing happens, while it is not finished and for what is no
  /// folder that the tree shows.
  bool readAgain(sizewalk::NodeId folder);
  /// Ends a running scan soon; what was found stays.
  void stop();
  /// Retires the current scan, stopping it if it runs, and forgets its summary.
  void drop();

  /// The current scan's scanner, until the next `start` replaces it; null before the first and
  /// after `drop`.
  const sizewalk::TreeScanner* scanner() const { return run_ ? &run_->scanner() : nullptr; }
  sizewalk::TreeScanner* scanner() { return run_ ? &run_->scanner() : nullptr; }
  /// The tree of `scanner`; null when that is. Who holds it may look at it for as long as it does.
  std::shared_ptr<const sizewalk::FileTree> tree() const;
  /// Absolute path of the current scan without "." and trailing slashes, and without ".." from when
  /// the file system has said where that leads. Empty without a scan.
  std::string path() const { return run_ ? run_->path() : std::string(); }
  /// There is a current scan, whether it has ended or not.
  bool running() const { return run_ != nullptr; }
  /// The current scan has ended and its summary is in place.
  bool finished() const { return run_ && run_->finished(); }
  /// A scan is under way.
  bool scanning() const { return running() && !finished(); }
  bool neverStarted() const { return neverStarted_; }
  /// Of the scan that finished; empty while `finished` is false.
  const ScanSummary& summary() const;

 private:
  const ScanReports reports_;
  /// With the runs, which may outlive the controller.
  const std::shared_ptr<ScanTurns> turns_ = std::make_shared<ScanTurns>();
  std::shared_ptr<ScanRun> run_;
  bool neverStarted_ = true;
};

}  // namespace app
