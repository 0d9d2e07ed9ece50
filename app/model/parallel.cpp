#include "app/model/parallel.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "base/mutex.h"

namespace app {

namespace {
/// A walk has several times as many threads as there are processors, all of them busy where the
/// storage is quick: a frame, of some 50 ms of work, would get a processor for a tenth of that time
/// and wait a second.
constexpr int kNiceness = 10;

/// Pieces of work that threads take in turns.
class SharedWork {
 public:
  SharedWork(std::size_t count, const std::function<void(std::size_t)>& work,
             const std::stop_token& stop)
      : count_(count), work_(work), stop_(stop) {}

  void takePieces() {
    try {
      for (std::size_t i; (i = next_.fetch_add(1, std::memory_order_relaxed)) < count_;) {
        endWhereGivenUp(stop_);
        work_(i);
      }
    } catch (...) {
      next_.store(count_, std::memory_order_relaxed);
      const base::MutexLock lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
    }
  }

  /// After all threads have ended.
  void rethrowFailure() {
    const base::MutexLock lock(mutex_);
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  const std::size_t count_;
  const std::function<void(std::size_t)>& work_;
  const std::stop_token& stop_;
  std::atomic<std::size_t> next_ = 0;  // the first piece that nobody has taken
  base::Mutex mutex_;                  // guards `failure_`
  std::exception_ptr failure_ GUARDED_BY(mutex_);
};

}  // namespace

void endWhereGivenUp(const std::stop_token& stop) {
  if (stop.stop_requested()) throw GivenUp();
}

void forEachOnThreads(std::size_t count, unsigned threads,
                      const std::function<void(std::size_t)>& work, const std::stop_token& stop) {
  SharedWork shared(count, work, stop);
  {
    const std::size_t threadCount = std::min<std::size_t>(std::max(threads, 1U), count);
    std::vector<std::jthread> helpers;
    try {
      helpers.reserve(threadCount);
      while (helpers.size() + 1 < threadCount) helpers.emplace_back([&] { shared.takePieces(); });
    } catch (const std::system_error&) {
      // No more threads to be had; those there are take its pieces.
    } catch (const std::bad_alloc&) {
      // Nor memory for one.
    }
    shared.takePieces();
  }
  shared.rethrowFailure();
}

unsigned hardwareThreads() {
  static const unsigned count = std::max(1U, std::thread::hardware_concurrency());
  return count;
}

// On Linux a thread has a priority of its own, which the threads that it starts take over.
void giveWayToWindow() { [[maybe_unused]] const int niceness = nice(kNiceness); }

}  // namespace app
