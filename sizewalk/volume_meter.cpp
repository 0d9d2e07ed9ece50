#include "sizewalk/volume_meter.h"

#include <fcntl.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <limits>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "base/file_descriptor.h"
#include "base/mutex.h"
#include "sizewalk/retry.h"

namespace sizewalk {

namespace {

/// The bytes of `blocks`; file systems of user space claim anything.
std::uint64_t bytesOf(std::uint64_t blocks, std::uint64_t blockSize) {
  std::uint64_t bytes = 0;
  return __builtin_mul_overflow(blocks, blockSize, &bytes)
             ? std::numeric_limits<std::uint64_t>::max()
             : bytes;
}

}  // namespace

VolumeUsage measureVolume(const std::string& path) {
  // Without read permission, and failing for a file: single files are mounted in containers.
  const base::FileDescriptor folder(
      retryInterrupted([&] { return ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
  struct statvfs status {};
  if (!folder.valid() || retryInterrupted([&] { return ::fstatvfs(folder.get(), &status); }) != 0) {
    return {};
  }
  return usageOf(status);
}

VolumeUsage usageOf(const struct statvfs& status) {
  const std::uint64_t blockSize = status.f_frsize;
  const std::uint64_t unused = std::min<std::uint64_t>(status.f_bfree, status.f_blocks);
  return {.totalBytes = bytesOf(status.f_blocks, blockSize),
          .usedBytes = bytesOf(status.f_blocks - unused, blockSize),
          .freeBytes = bytesOf(std::min<std::uint64_t>(status.f_bavail, unused), blockSize)};
}

struct VolumeMeter::Shared {
  Shared(OnMeasured reportTo, Measure measureWith)
      : measure(std::move(measureWith)), onMeasured(std::move(reportTo)) {}

  /// The work of one thread.
  void answer(const std::string& mountPoint) EXCLUDES(mutex) {
    const VolumeUsage usage = measure(mountPoint);
    const base::MutexLock lock(mutex);
    outstanding.erase(mountPoint);
    if (onMeasured) onMeasured(mountPoint, usage);
  }

  const Measure measure;
  base::Mutex mutex;  // guards the members below, and is held while an answer is reported
  OnMeasured onMeasured GUARDED_BY(mutex);              // empty once the meter is gone
  std::set<std::string> outstanding GUARDED_BY(mutex);  // mount points that owe an answer
};

VolumeMeter::VolumeMeter(OnMeasured onMeasured, Measure measure)
    : shared_(std::make_shared<Shared>(std::move(onMeasured), std::move(measure))) {}

VolumeMeter::~VolumeMeter() {
  const base::MutexLock lock(shared_->mutex);
  shared_->onMeasured = nullptr;
}

void VolumeMeter::measure(const std::vector<std::string>& mountPoints) {
  const base::MutexLock lock(shared_->mutex);
  for (const std::string& mountPoint : mountPoints) {
    if (!shared_->outstanding.insert(mountPoint).second) continue;
    try {
      // Detached: joining would wait for a server that is gone.
      std::thread([shared = shared_, mountPoint] { shared->answer(mountPoint); }).detach();
    } catch (const std::system_error&) {
      shared_->outstanding.erase(mountPoint);
    }
  }
}

}  // namespace sizewalk
