#pragma once

#include "base/mutex.h"
#include "sizewalk/work_list.h"

namespace sizewalk {

/// Lets any thread stop a walk, whether it has begun or not.
///
/// Armed from construction on, and again by `arm`: a `cancel` that arrives between arming and the
/// walk's first step stops that walk, while one that arrives after a walk has ended does not stop
/// the next.
class WalkControl {
 public:
  /// Forgets a cancel of an earlier walk. Does nothing when no walk has run since the last arming.
  void arm();
  /// Makes `list` the one that `cancel` closes; closes it at once when a cancel has come already.
  void begin(WorkList* list);
  /// The walk is over: `list` may be destroyed.
  void end();
  /// Readers of the running walk take no new directories. Returns at once.
  void cancel();
  /// Whether the walk that runs, or ran last, was told to stop.
  bool cancelRequested() const;

 private:
  mutable base::Mutex mutex_;  // guards the members below
  bool cancelRequested_ GUARDED_BY(mutex_) = false;
  bool armed_ GUARDED_BY(mutex_) = true;
  WorkList* activeWorkList_ GUARDED_BY(mutex_) = nullptr;
  int closing_ GUARDED_BY(mutex_) = 0;  // calls of `cancel` that hold the list without the mutex
  base::CondVar closed_;
};

}  // namespace sizewalk
