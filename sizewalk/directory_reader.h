#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cstddef>
#include <span>
#include <string>

#include "base/file_descriptor.h"
#include "sizewalk/directory_result.h"

namespace sizewalk {

/// How a directory is opened for listing: without waiting, and not through a symbolic link.
inline constexpr int kListingFlags = O_RDONLY | O_NONBLOCK | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Opens the directory at the absolute `path` for listing: read-only, non-blocking, never following
/// a symbolic link in the last component. A path longer than the kernel takes in one call is opened
/// step by step from an ancestor. On failure the descriptor is none and errno says why. Any thread.
base::FileDescriptor openDirectory(const std::string& path);

/// When the entry came to be, in seconds since the epoch: its birth time, or its change time where
/// the file system keeps none. 0 when that is unknown or does not fit.
std::uint32_t birthOrChangeTime(const struct statx& status);

/// What a reader needs to know of the scan it works for.
struct ReadRules {
  /// Give files with several names a key, so that they can be counted once.
  bool dedupeHardLinks = true;
  /// Set by another thread to break a listing off; what was read so far stays. May be null.
  const std::atomic<bool>* stop = nullptr;
};

/// Lists the open directory `fd` and examines each entry, appending to `result` in listing order.
/// Symbolic links are not followed, automounts not triggered, remote servers not asked to sync. A
/// directory on another device is marked as a mount point and not queued. All outcomes are in
/// `result`: an entry whose status fails becomes an unreadable item, a failing listing ends with
/// the entries read so far and one error. `buffer` is the reader's own, 16-byte aligned. Touches
/// nothing shared.
void readDirectory(const ReadRules& rules, int fd, DirectoryResult* result,
                   std::span<std::byte> buffer);

}  // namespace sizewalk
