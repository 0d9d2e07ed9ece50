#pragma once

#include <functional>
#include <vector>

#include "base/mutex.h"

namespace ui {

/// Work handed to the window thread.
using Task = std::function<void()>;

/// Tasks that any thread may append and the window thread runs.
class TaskQueue {
 public:
  /// Any thread. Throws std::system_error when the lock cannot be taken.
  void append(Task task) EXCLUDES(mutex_);
  /// Runs the tasks appended so far in their order, then destroys them; those appended meanwhile
  /// wait for the next call. The lock is not held while a task runs.
  void runAll() EXCLUDES(mutex_);

 private:
  base::Mutex mutex_;  // guards tasks_
  std::vector<Task> tasks_ GUARDED_BY(mutex_);
};

}  // namespace ui
