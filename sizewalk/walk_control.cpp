#include "sizewalk/walk_control.h"

namespace sizewalk {

void WalkControl::arm() {
  const base::MutexLock lock(mutex_);
  if (armed_) return;
  armed_ = true;
  cancelRequested_ = false;
}

void WalkControl::begin(WorkList* list) {
  bool closeNow = false;
  {
    const base::MutexLock lock(mutex_);
    activeWorkList_ = list;
    closeNow = cancelRequested_;
  }
  if (closeNow) list->close();
}

void WalkControl::end() {
  const base::MutexLock lock(mutex_);
  activeWorkList_ = nullptr;
  armed_ = false;
  while (closing_ > 0) closed_.wait(mutex_);
}

// The list is closed after the mutex is released, so that two mutexes are never held at once; `end`
// waits for that, or the list could be gone by then.
void WalkControl::cancel() {
  WorkList* list = nullptr;
  {
    const base::MutexLock lock(mutex_);
    cancelRequested_ = true;
    list = activeWorkList_;
    if (!list) return;
    ++closing_;
  }
  list->close();
  const base::MutexLock lock(mutex_);
  --closing_;
  closed_.notifyAll();
}

bool WalkControl::cancelRequested() const {
  const base::MutexLock lock(mutex_);
  return cancelRequested_;
}

}  // namespace sizewalk
