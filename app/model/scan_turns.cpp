#include "app/model/scan_turns.h"

namespace app {

bool ScanTurns::take(const std::string& folder, const sizewalk::TreeScanner& scanner) {
  std::uint64_t seen = changes();
  while (!scanner.cancelRequested()) {
    const base::MutexLock lock(mutex_);
    int& taken = taken_[folder];
    if (taken < kScansOfAFolder) {
      ++taken;
      return true;
    }
    while (changes_ == seen) changed_.wait(mutex_);
    seen = changes_;
  }
  return false;
}

std::uint64_t ScanTurns::changes() {
  const base::MutexLock lock(mutex_);
  return changes_;
}

void ScanTurns::giveBack(const std::string& folder) {
  const base::MutexLock lock(mutex_);
  const auto taken = taken_.find(folder);
  if (--taken->second == 0) taken_.erase(taken);
  ++changes_;
  changed_.notifyAll();
}

void ScanTurns::cancelled() {
  const base::MutexLock lock(mutex_);
  ++changes_;
  changed_.notifyAll();
}

}  // namespace app
