#include "sizewalk/long_path.h"

#include <cerrno>
#include <climits>
#include <cstddef>

#include "sizewalk/retry.h"

namespace sizewalk {

std::optional<ReachedPath> reachPath(const std::string& path) {
  constexpr int kStepFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  constexpr std::size_t kLongest = PATH_MAX - 1;
  ReachedPath reached;
  std::size_t start = 0;
  // In the longest steps that the kernel takes, each relative to the one before.
  while (path.size() - start > kLongest) {
    const std::size_t slash = path.rfind('/', start + kLongest);
    if (slash == std::string::npos || slash <= start) {
      errno = ENAMETOOLONG;
      return std::nullopt;
    }
    const std::string step = path.substr(start, slash - start);
    reached.ancestor = base::FileDescriptor(
        retryInterrupted([&] { return openat(reached.directory(), step.c_str(), kStepFlags); }));
    if (!reached.ancestor.valid()) return std::nullopt;
    start = slash + 1;
  }
  reached.rest = path.substr(start);
  return reached;
}

}  // namespace sizewalk
