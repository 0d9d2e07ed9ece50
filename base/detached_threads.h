#pragma once

#include <chrono>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace base {

/// Counts a thread that nobody joins from before it starts until all that it owned is gone.
class DetachedThreadCount {
 public:
  DetachedThreadCount();
  ~DetachedThreadCount();
  DetachedThreadCount(DetachedThreadCount&& other) noexcept
      : counts_(std::exchange(other.counts_, false)) {}
  DetachedThreadCount(const DetachedThreadCount&) = delete;
  DetachedThreadCount& operator=(const DetachedThreadCount&) = delete;

 private:
  bool counts_ = true;
};

/// Runs `work` on a thread that nobody joins: what it waits for, such as a server that is gone, may
/// never answer. `work` owns all that it needs, since it may outlive whoever started it, and must
/// not throw. It is destroyed on its thread. False, with nothing run, where no thread is to be had,
/// or no memory for one.
template <typename Work>
bool startDetached(Work work) {
  struct Counted {
    DetachedThreadCount count;  // above what it counts, which goes first
    Work work;
    void operator()() { work(); }
  };
  try {
    std::thread(Counted{{}, std::move(work)}).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

/// Destroys `what` on a thread of its own: giving back the hundred megabytes of a tree takes tens
/// of milliseconds, which the calling thread may not have. Where no thread is to be had it happens
/// here.
template <typename What>
void destroyElsewhere(What what) {
  startDetached([kept = std::move(what)] {});
}

/// Waits for the end of all threads of `startDetached`, but no longer than until `deadline`. True
/// when none is left. Any thread but those.
bool awaitDetachedThreads(std::chrono::steady_clock::time_point deadline);

}  // namespace base
