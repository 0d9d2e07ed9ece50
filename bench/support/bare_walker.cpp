#include "bench/support/bare_walker.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t kBufferBytes = 262144;
constexpr unsigned kMask =
    STATX_TYPE | STATX_NLINK | STATX_CTIME | STATX_INO | STATX_SIZE | STATX_BLOCKS | STATX_BTIME;

class BareWalk {
 public:
  explicit BareWalk(const std::string& root) : stack_{root} {}

  void run() {
    std::vector<char> buffer(kBufferBytes);
    std::vector<std::string> found;
    BareTotals totals;
    std::string path;
    while (take(&path)) {
      found.clear();
      list(path, &buffer, &found, &totals);
      giveBack(&found);
    }
    const std::lock_guard lock(mutex_);
    totals_.entries += totals.entries;
    totals_.allocatedBytes += totals.allocatedBytes;
  }

  BareTotals totals() const { return totals_; }

 private:
  bool take(std::string* path) {
    std::unique_lock lock(mutex_);
    ++waiting_;
    changed_.wait(lock, [&] { return !stack_.empty() || pending_ == 0; });
    --waiting_;
    if (stack_.empty()) return false;
    *path = std::move(stack_.back());
    stack_.pop_back();
    return true;
  }

  void giveBack(std::vector<std::string>* found) {
    const std::lock_guard lock(mutex_);
    pending_ += found->size();
    for (std::string& path : *found) stack_.push_back(std::move(path));
    const bool finished = --pending_ == 0;
    if (finished || waiting_ > 0) changed_.notify_all();
  }

  static void list(const std::string& path, std::vector<char>* buffer,
                   std::vector<std::string>* found, BareTotals* totals) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return;
    struct statx self;
    if (statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_TYPE, &self) != 0) self = {};
    long filled = 0;
    while ((filled = syscall(SYS_getdents64, fd, buffer->data(), buffer->size())) > 0) {
      for (long at = 0; at < filled;) {
        const char* record = buffer->data() + at;
        std::uint16_t length = 0;
        std::memcpy(&length, record + 16, sizeof length);
        at += length;
        examine(fd, record + 19, self, path, found, totals);
      }
    }
    close(fd);
  }

  static void examine(int fd, const char* name, const struct statx& self, const std::string& path,
                      std::vector<std::string>* found, BareTotals* totals) {
    const std::string_view text(name);
    if (text == "." || text == "..") return;
    struct statx status;
    if (statx(fd, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, kMask,
              &status) != 0) {
      return;
    }
    ++totals->entries;
    if (S_ISREG(status.stx_mode)) totals->allocatedBytes += status.stx_blocks * 512;
    const bool sameDevice =
        status.stx_dev_major == self.stx_dev_major && status.stx_dev_minor == self.stx_dev_minor;
    if (S_ISDIR(status.stx_mode) && sameDevice) found->push_back(path + "/" + name);
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> stack_;
  std::uint64_t pending_ = 1;
  int waiting_ = 0;
  BareTotals totals_;
};

}  // namespace

BareTotals bareWalk(const std::string& root, int threads) {
  BareWalk walk(root);
  std::vector<std::thread> pool;
  for (int i = 0; i < threads; ++i) pool.emplace_back([&] { walk.run(); });
  for (std::thread& thread : pool) thread.join();
  return walk.totals();
}

}  // namespace bench
