#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// Locks that clang's thread-safety analysis understands
/// (https://clang.llvm.org/docs/ThreadSafetyAnalysis.html). With another compiler the annotations
/// vanish and a `Mutex` is a plain std::mutex.
#if defined(__clang__)
#define HEAPGAUGE_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define HEAPGAUGE_THREAD_ANNOTATION(x)
#endif

#define GUARDED_BY(x) HEAPGAUGE_THREAD_ANNOTATION(guarded_by(x))
#define REQUIRES(...) HEAPGAUGE_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) HEAPGAUGE_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) HEAPGAUGE_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) HEAPGAUGE_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define CAPABILITY(x) HEAPGAUGE_THREAD_ANNOTATION(capability(x))
#define SCOPED_CAPABILITY HEAPGAUGE_THREAD_ANNOTATION(scoped_lockable)

namespace base {

/// A std::mutex whose holders the compiler can check. Each one says in its comment what it guards.
class CAPABILITY("mutex") Mutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

 private:
  friend class CondVar;
  std::mutex mutex_;
};

/// Holds a `Mutex` for a scope.
class SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

/// A condition variable for `Mutex`. Waits may wake without cause: wait in a loop over the
/// condition.
class CondVar {
 public:
  /// Releases `mutex` while waiting and holds it again on return.
  void wait(Mutex& mutex) REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    condition_.wait(lock);
    lock.release();
  }

  /// As `wait`, but returns false once `deadline` has passed.
  bool waitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline) REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    const std::cv_status status = condition_.wait_until(lock, deadline);
    lock.release();
    return status == std::cv_status::no_timeout;
  }

  void notifyOne() noexcept { condition_.notify_one(); }
  void notifyAll() noexcept { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

}  // namespace base
