#include "tests/app/dialogs/slow_folders.h"

#include "base/mutex.h"

namespace test {

struct SlowFolders::State {
  mutable base::Mutex mutex;  // guards the members below
  base::CondVar released;
  bool isReleased GUARDED_BY(mutex) = false;
  int questions GUARDED_BY(mutex) = 0;
  int answers GUARDED_BY(mutex) = 0;

  void wait() EXCLUDES(mutex) {
    const base::MutexLock lock(mutex);
    ++questions;
    while (!isReleased) released.wait(mutex);
    ++answers;
  }
};

SlowFolders::SlowFolders() : state_(std::make_shared<State>()) {}

SlowFolders::~SlowFolders() { release(); }

app::SubFolderReader::Read SlowFolders::read() const {
  return [state = state_](const std::string& path) {
    if (path.ends_with("slow")) state->wait();
    return app::readSubFolders(path);
  };
}

void SlowFolders::release() {
  const base::MutexLock lock(state_->mutex);
  state_->isReleased = true;
  state_->released.notifyAll();
}

int SlowFolders::questions() const {
  const base::MutexLock lock(state_->mutex);
  return state_->questions;
}

int SlowFolders::answers() const {
  const base::MutexLock lock(state_->mutex);
  return state_->answers;
}

}  // namespace test
