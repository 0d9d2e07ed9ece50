#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "base/mutex.h"
#include "sizewalk/node.h"

namespace sizewalk {

/// The directories still to be read: a stack, so that the walk goes depth first and few directories
/// wait. It closes itself when all that was pushed has been integrated. All operations from any
/// thread.
class WorkList {
 public:
  explicit WorkList(NodeId start) : stack_{start} {}

  /// Adds a batch and wakes waiting readers.
  void pushAll(std::span<const NodeId> directories);
  /// Waits for a directory and takes the most recently pushed one. False once the list is closed,
  /// even when directories remain.
  bool pop(NodeId* directory);
  /// As `pop`, but false at once when there is nothing to take now.
  bool tryPop(NodeId* directory);
  /// One popped directory has been integrated, its subdirectories pushed. The last one closes the
  /// list.
  void done();
  void close();

  /// Set for good when the list closes; for readers in the middle of a long directory.
  const std::atomic<bool>& closedFlag() const { return closed_; }

 private:
  bool take(NodeId* directory) REQUIRES(mutex_);
  void closeLocked() REQUIRES(mutex_);

  base::Mutex mutex_;  // guards the members below
  base::CondVar changed_;
  std::vector<NodeId> stack_ GUARDED_BY(mutex_);
  std::uint64_t pending_ GUARDED_BY(mutex_) = 1;  // pushed and not yet integrated
  std::uint64_t waiting_ GUARDED_BY(mutex_) = 0;  // readers inside `pop` without a directory
  /// Written under the mutex, polled without it for every entry: on a line of its own.
  alignas(64) std::atomic<bool> closed_{false};
};

}  // namespace sizewalk
