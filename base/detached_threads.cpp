#include "base/detached_threads.h"

#include <memory>

#include "base/mutex.h"

namespace base {

namespace {

struct Running {
  Mutex mutex;  // guards the member below
  CondVar changed;
  int threads GUARDED_BY(mutex) = 0;
};

/// Never destroyed: a thread that nobody waited for may end while the process does.
Running& running() {
  static Running* const theRunning = std::make_unique<Running>().release();
  return *theRunning;
}

}  // namespace

DetachedThreadCount::DetachedThreadCount() {
  const MutexLock lock(running().mutex);
  ++running().threads;
}

// Whoever waits for the end may end the process then: nothing is touched once the lock is released.
DetachedThreadCount::~DetachedThreadCount() {
  if (!counts_) return;
  const MutexLock lock(running().mutex);
  --running().threads;
  running().changed.notifyAll();
}

bool awaitDetachedThreads(std::chrono::steady_clock::time_point deadline) {
  const MutexLock lock(running().mutex);
  while (running().threads > 0 && running().changed.waitUntil(running().mutex, deadline)) {
  }
  return running().threads == 0;
}

}  // namespace base
