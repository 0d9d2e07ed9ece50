#include "sizewalk/volume_meter.h"

#include <fcntl.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "base/file_descriptor.h"
#include "base/owed_answers.h"
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

VolumeMeter::VolumeMeter(OnMeasured onMeasured, Measure measure)
    : answers_(std::move(measure), std::move(onMeasured)) {}

void VolumeMeter::measure(const std::vector<std::string>& mountPoints) {
  for (const std::string& mountPoint : mountPoints) answers_.ask(mountPoint);
}

}  // namespace sizewalk
