#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace test {

/// What other threads post to the window's, until a test says that this comes to it. `post` from
/// any thread; outlives whoever was given it.
class PostedTasks {
 public:
  using Task = std::function<void()>;

  std::function<void(Task)> post() {
    return [this](Task task) {
      const std::lock_guard lock(mutex_);
      tasks_.push_back(std::move(task));
    };
  }

  std::size_t count() {
    const std::lock_guard lock(mutex_);
    return tasks_.size();
  }

  /// Runs those posted so far.
  void run() {
    for (const Task& task : take()) task();
  }
  /// Those, too, that they post themselves.
  void runAll() {
    while (count() > 0) run();
  }
  /// Runs the one that was posted first. False when there is none.
  bool runFirst() {
    Task task;
    {
      const std::lock_guard lock(mutex_);
      if (tasks_.empty()) return false;
      task = std::move(tasks_.front());
      tasks_.erase(tasks_.begin());
    }
    task();
    return true;
  }

 private:
  std::vector<Task> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(tasks_, {});
  }

  std::mutex mutex_;  // guards the tasks
  std::vector<Task> tasks_;
};

}  // namespace test
