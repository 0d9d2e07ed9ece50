#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "base/mutex.h"
#include "sizewalk/tree_scanner.h"

namespace app {

/// How many scans of one folder may be at its file system at a time. One that was given up leaves a
/// dozen threads behind while a server does not answer; whoever keeps asking for another must not
/// fill the machine with them. More than one, since another server may have taken that one's place.
inline constexpr int kScansOfAFolder = 4;

/// Makes the scans of one folder take turns once too many of them hang. Those of other folders are
/// never held up. Any thread.
class ScanTurns {
 public:
  /// Takes a turn at `folder`, waiting while `kScansOfAFolder` others have theirs. False, without a
  /// turn, when `scanner` was cancelled before there was one.
  bool take(const std::string& folder, const sizewalk::TreeScanner& scanner) EXCLUDES(mutex_);
  /// Ends a turn.
  void giveBack(const std::string& folder) EXCLUDES(mutex_);
  /// A scanner was cancelled that may be waiting.
  void cancelled() EXCLUDES(mutex_);

 private:
  std::uint64_t changes() EXCLUDES(mutex_);

  base::Mutex mutex_;  // guards the members below
  base::CondVar changed_;
  std::map<std::string, int> taken_ GUARDED_BY(mutex_);  // by folder
  /// A scanner is asked without the lock, as its own would be held beneath it: this tells one that
  /// has asked and does not wait yet that the answer may be another by now.
  std::uint64_t changes_ GUARDED_BY(mutex_) = 0;
};

}  // namespace app
