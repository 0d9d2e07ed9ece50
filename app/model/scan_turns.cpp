#include "app/model/scan_turns.h"

namespace app {

bool ScanTurns::take(const std::string& folder, const sizewalk::TreeScanner& scanner) {
  const base::MutexLock lock(mutex_);
  while (!scanner.cancelRequested()) {
    int& taken = taken_[folder];
    if (taken < kScansOfAFolder) {
      ++taken;
      return true;
    }
    changed_.wait(mutex_);
  }
  return false;
}

void ScanTurns::giveBack(const std::string& folder) {
  const base::MutexLock lock(mutex_);
  const auto taken = taken_.find(folder);
  if (--taken->second == 0) taken_.erase(taken);
  changed_.notifyAll();
}

// With the lock: a scan that has looked but does not wait yet would miss it.
void ScanTurns::cancelled() {
  const base::MutexLock lock(mutex_);
  changed_.notifyAll();
}

}  // namespace app
