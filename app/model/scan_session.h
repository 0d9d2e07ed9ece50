#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/model/refresh_pacer.h"
#include "app/model/scan_controller.h"
#include "app/model/scan_status.h"
#include "app/model/scan_summary.h"
#include "sizewalk/file_tree.h"

namespace app {

enum class ScanPhase {
  /// There is no scan.
  None,
  Scanning,
  /// The user has stopped it, but its threads may still wait for a disk.
  Stopping,
  /// All that was found is there, and the summary; when that tells of a failure, more could not be
  /// found.
  Ended,
  /// Nothing was found; the summary says why.
  Failed,
};

/// One scan as the window sees it, from `start` to `leave` or the next `start`. Window thread only;
/// waits for nothing.
class ScanSession {
 public:
  using Clock = RefreshPacer::Clock;
  using Now = std::function<Clock::time_point()>;
  /// Has the window thread run a task, as long as the session is there. Called on other threads.
  using Post = std::function<void(std::function<void()>)>;

  /// `path` is another one: the file system has said where its ".." leads.
  std::function<void()> onPathFound;
  /// There is more in the tree, and the last look at it was long enough ago.
  std::function<void()> onGrown;
  /// The phase is `Ended` or `Failed` now. The callee may leave the scan.
  std::function<void()> onEnded;

  explicit ScanSession(Post post, Now now = Clock::now);

  /// Scans `path` instead of whatever was scanned before.
  void start(const std::string& path);
  /// Reads a folder of the tree again, after a scan that has ended. Nothing before.
  void readAgain(sizewalk::NodeId folder);
  /// Ends the scan soon; what was found stays.
  void stop();
  /// Lets go of the scan, stopping it if it runs.
  void leave();
  /// Time passes: looks for what the scan has found since. To be called some ten times a second.
  void follow();

  ScanPhase phase() const { return phase_; }
  /// Its threads have not ended yet.
  bool underWay() const { return phase_ == ScanPhase::Scanning || phase_ == ScanPhase::Stopping; }
  /// As `ScanController::path`; it changes only with `onPathFound`. Empty without a scan.
  const std::string& path() const { return path_; }
  /// As `ScanController::tree`.
  std::shared_ptr<const sizewalk::FileTree> tree() const { return controller_.tree(); }
  /// The same, to take items out of and to put them back. Null without a scan.
  sizewalk::FileTree* treeToChange();
  /// Of a scan that has ended or failed, otherwise empty.
  const ScanSummary& summary() const { return controller_.summary(); }
  /// For the status line, but for what is taken from the tree.
  ScanStatus status() const;
  /// Is told what looking at the tree costs.
  RefreshPacer& pacer() { return pacer_; }

 private:
  void lookAtPath();
  void lookAtTree();
  void lookAtEnd();
  bool foundSomething() const;

  const Now now_;
  RefreshPacer pacer_;
  ScanPhase phase_ = ScanPhase::None;
  bool readingAgain_ = false;
  std::string path_;
  Clock::time_point started_;
  Clock::time_point stopped_;
  /// What was there at the last look.
  sizewalk::NodeId seenNodes_ = 0;
  /// Below what its reports use.
  ScanController controller_;
};

}  // namespace app
