#include "sizewalk/result_queue.h"

#include <utility>

namespace sizewalk {

namespace {
/// Taken results are erased from the front of the array only this many at a time.
constexpr std::size_t kEraseAfter = 4096;
}  // namespace

void ResultQueue::push(std::unique_ptr<DirectoryResult> result) {
  bool wake = false;
  {
    const base::MutexLock lock(mutex_);
    while (results_.size() - readPosition_ >= kCapacity && !closed_) {
      ++producerWaits_;
      ++producersWaiting_;
      roomMade_.wait(mutex_);
      --producersWaiting_;
    }
    results_.push_back(std::move(result));
    if (results_.size() - readPosition_ >= kBatch) wake = std::exchange(consumerWaiting_, false);
  }
  if (wake) resultCame_.notifyOne();
}

void ResultQueue::flush() {
  bool wake = false;
  {
    const base::MutexLock lock(mutex_);
    if (readPosition_ < results_.size()) wake = std::exchange(consumerWaiting_, false);
  }
  if (wake) resultCame_.notifyOne();
}

std::unique_ptr<DirectoryResult> ResultQueue::pop() {
  std::unique_ptr<DirectoryResult> result;
  bool wake = false;
  {
    const base::MutexLock lock(mutex_);
    if (readPosition_ == results_.size() && !closed_) ++consumerWaits_;
    while (readPosition_ == results_.size()) {
      if (closed_) return nullptr;
      consumerWaiting_ = true;
      resultCame_.waitUntil(mutex_, std::chrono::steady_clock::now() + longestPause_);
    }
    consumerWaiting_ = false;
    result = std::move(results_[readPosition_++]);
    if (readPosition_ > kEraseAfter) {
      results_.erase(results_.begin(),
                     results_.begin() + static_cast<std::ptrdiff_t>(readPosition_));
      readPosition_ = 0;
    }
    wake = producersWaiting_ > 0;
  }
  if (wake) roomMade_.notifyOne();
  return result;
}

void ResultQueue::close() {
  {
    const base::MutexLock lock(mutex_);
    closed_ = true;
  }
  roomMade_.notifyAll();
  resultCame_.notifyAll();
}

std::uint64_t ResultQueue::producerWaits() const {
  const base::MutexLock lock(mutex_);
  return producerWaits_;
}

std::uint64_t ResultQueue::consumerWaits() const {
  const base::MutexLock lock(mutex_);
  return consumerWaits_;
}

}  // namespace sizewalk
