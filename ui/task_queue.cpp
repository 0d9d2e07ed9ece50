#include "ui/task_queue.h"

#include <utility>

namespace ui {

void TaskQueue::append(Task task) {
  base::MutexLock lock(mutex_);
  tasks_.push_back(std::move(task));
}

void TaskQueue::runAll() {
  std::vector<Task> taken;
  {
    base::MutexLock lock(mutex_);
    taken.swap(tasks_);
  }
  for (const Task& task : taken) task();
}

}  // namespace ui
