#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/mutex.h"
#include "sizewalk/directory_result.h"

namespace sizewalk {

/// Results on their way from the readers to the integrator, first in, first out. Bounded, so that
/// fast readers cannot run far ahead. All operations from any thread.
class ResultQueue {
 public:
  static constexpr std::size_t kCapacity = 1024;
  /// Results that wake a waiting integrator.
  static constexpr std::size_t kBatch = 32;

  /// How long less than a batch may lie there while every reader is busy.
  static constexpr std::chrono::milliseconds kLongestPause{10};

  explicit ResultQueue(std::chrono::milliseconds longestPause = kLongestPause)
      : longestPause_(longestPause) {}

  /// Waits while the queue is full, unless it is closed.
  void push(std::unique_ptr<DirectoryResult> result);
  /// Wakes the integrator for what there is. A reader calls it before it waits for the integrator's
  /// doing.
  void flush();
  /// Waits for a result; null once the queue is closed and empty. Integrator only.
  std::unique_ptr<DirectoryResult> pop();
  void close();

  /// Times a reader had to wait for room, and times the integrator had to wait for a result.
  std::uint64_t producerWaits() const;
  std::uint64_t consumerWaits() const;

 private:
  const std::chrono::milliseconds longestPause_;
  mutable base::Mutex mutex_;  // guards the members below
  base::CondVar roomMade_;
  base::CondVar resultCame_;
  /// Waiting results start at `readPosition_`; what lies before was taken.
  std::vector<std::unique_ptr<DirectoryResult>> results_ GUARDED_BY(mutex_);
  std::size_t readPosition_ GUARDED_BY(mutex_) = 0;
  bool closed_ GUARDED_BY(mutex_) = false;
  std::uint64_t producersWaiting_ GUARDED_BY(mutex_) = 0;
  bool consumerWaiting_ GUARDED_BY(mutex_) = false;
  std::uint64_t producerWaits_ GUARDED_BY(mutex_) = 0;
  std::uint64_t consumerWaits_ GUARDED_BY(mutex_) = 0;
};

}  // namespace sizewalk
