#include "sizewalk/work_list.h"

namespace sizewalk {

void WorkList::pushAll(std::span<const NodeId> directories) {
  if (directories.empty()) return;
  std::uint64_t waiting = 0;
  {
    const base::MutexLock lock(mutex_);
    stack_.insert(stack_.end(), directories.begin(), directories.end());
    pending_ += directories.size();
    waiting = waiting_;
  }
  // A wake-up that finds nothing costs two context switches: no more readers than there is work
  // for.
  if (waiting > directories.size()) {
    for (std::size_t i = 0; i < directories.size(); ++i) changed_.notifyOne();
  } else if (waiting > 0) {
    changed_.notifyAll();
  }
}

bool WorkList::pop(NodeId* directory) {
  const base::MutexLock lock(mutex_);
  ++waiting_;
  while (stack_.empty() && !closed_.load(std::memory_order_relaxed)) changed_.wait(mutex_);
  --waiting_;
  return take(directory);
}

bool WorkList::tryPop(NodeId* directory) {
  const base::MutexLock lock(mutex_);
  return take(directory);
}

bool WorkList::take(NodeId* directory) {
  if (stack_.empty() || closed_.load(std::memory_order_relaxed)) return false;
  *directory = stack_.back();
  stack_.pop_back();
  return true;
}

void WorkList::done() {
  const base::MutexLock lock(mutex_);
  if (--pending_ == 0) closeLocked();
}

void WorkList::close() {
  const base::MutexLock lock(mutex_);
  closeLocked();
}

void WorkList::closeLocked() {
  closed_.store(true, std::memory_order_relaxed);
  changed_.notifyAll();
}

}  // namespace sizewalk
