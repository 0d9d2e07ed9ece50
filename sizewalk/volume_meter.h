#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/owed_answers.h"

struct statvfs;

namespace sizewalk {

/// How full a file system is, in bytes. As `df` tells it: what is kept for the administrator is
/// neither used nor free, so that used and free together may be less than the total.
struct VolumeUsage {
  /// 0 for what holds no files, is no directory, or cannot be asked.
  std::uint64_t totalBytes = 0;
  std::uint64_t usedBytes = 0;
  /// What the user may still write.
  std::uint64_t freeBytes = 0;
};

/// What a file system says of itself, in bytes. Any thread.
VolumeUsage usageOf(const struct statvfs& status);

/// Asks the file system that holds the folder `path`. Waits, without end in the worst case, for the
/// server of one that lies on the network. Any thread but the window's.
VolumeUsage measureVolume(const std::string& path);

/// Measures volumes without waiting for them, each on a thread of its own. Used by one thread; one
/// serves the whole run of a program (see `base::OwedAnswers`).
class VolumeMeter {
 public:
  /// Called on the meter's threads, one at a time, with a lock held: it hands the answer on, and
  /// neither calls the meter nor waits for a thread that does.
  using OnMeasured = std::function<void(const std::string& mountPoint, const VolumeUsage& usage)>;
  /// Called on several threads at once, perhaps still when the meter is gone: it owns what it
  /// needs. What it throws makes the usage nothing.
  using Measure = std::function<VolumeUsage(const std::string& mountPoint)>;

  /// The meter goes without waiting for answers. None is reported afterwards.
  explicit VolumeMeter(OnMeasured onMeasured, Measure measure = measureVolume);

  /// Asks for the usage of each and returns at once; every answer is reported once. One that still
  /// owes the answer to an earlier question is not asked again: that answer serves both. Where no
  /// thread can be started the question is dropped, and the next call asks anew.
  void measure(const std::vector<std::string>& mountPoints);

 private:
  base::OwedAnswers<std::string, VolumeUsage> answers_;
};

}  // namespace sizewalk
