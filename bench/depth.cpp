// What a level costs in a chain of folders, 6,000 levels deep against 1,000: whether a walk takes
// longer for a folder because it lies deep.

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "base/file_descriptor.h"
#include "bench/support/paired_timing.h"
#include "bench/support/quiet_run.h"
#include "bench/support/row.h"
#include "sizewalk/tree_scanner.h"

namespace {

constexpr std::size_t kPairs = 9;
constexpr int kShort = 1000;
constexpr int kLong = 6000;

void check(bool fine, const std::string& what) {
  if (!fine) throw std::system_error(errno, std::generic_category(), what);
}

/// A chain of folders with names of 40 bytes, in tmpfs where there is one; removed
/// at the end of the scope.
class Chain {
 public:
  explicit Chain(int levels) {
    path_ = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    path_ += "/heapgauge-bench-XXXXXX";
    check(mkdtemp(path_.data()) != nullptr, path_);
    base::FileDescriptor at(open(path_.c_str(), O_RDONLY | O_DIRECTORY));
    for (int i = 0; i < levels; ++i) at = addLevel(at.get());
  }
  // No directory_iterator gets to the end of it: that keeps every level open.
  ~Chain() { bench::runQuietly({"rm", "-rf", path_}); }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;

  const std::string& path() const { return path_; }

 private:
  static base::FileDescriptor addLevel(int at) {
    const std::string name = "a folder in a chain of folders, level by";
    check(mkdirat(at, name.c_str(), 0700) == 0, name);
    base::FileDescriptor next(openat(at, name.c_str(), O_RDONLY | O_DIRECTORY));
    check(next.valid(), name);
    return next;
  }

  std::string path_;
};

void walk(const Chain& chain) {
  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(chain.path());
  scanner.walk(sizewalk::kRootNode);
}

std::string perLevel(double ms) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f µs", ms * 1000);
  return text;
}

}  // namespace

int main() {
  const Chain shorter(kShort);
  const Chain longer(kLong);
  const bench::PairedTiming timing = bench::timePaired(
      kPairs, [&] { walk(shorter); }, [&] { walk(longer); });
  const double growth = 1 / timing.speedup * kShort / kLong;
  bench::printRow("walk of a chain of 6,000 folders, a level, against one of 1,000",
                  perLevel(timing.candidateMs / kLong), perLevel(timing.baselineMs / kShort),
                  bench::times(growth), "at most 1.5");
  return 0;
}
