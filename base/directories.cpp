#include "base/directories.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>

namespace base {

namespace {
constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kPermissions = 0777;

/// A umask takes rights away from mkdir(), and asking for it means changing it under every thread.
void undoUmask(const std::string& path) {
  struct stat made {};
  if (::lstat(path.c_str(), &made) != 0 || (made.st_mode & kPermissions) == kOwnerOnly) return;
  const mode_t special = made.st_mode & ~(kPermissions | static_cast<mode_t>(S_IFMT));
  // File systems whose modes are fixed refuse, and their directories serve all the same.
  [[maybe_unused]] const int refused =
      ::fchmodat(AT_FDCWD, path.c_str(), special | kOwnerOnly, AT_SYMLINK_NOFOLLOW);
}

bool makeDirectory(const std::string& path) {
  if (::mkdir(path.c_str(), kOwnerOnly) != 0) return errno == EEXIST;
  undoUmask(path);
  return true;
}
}  // namespace

bool makeDirectories(const std::string& path) {
  if (path.empty()) return true;
  for (std::size_t end = 0; end != std::string::npos;) {
    end = path.find('/', end + 1);
    if (!makeDirectory(path.substr(0, end))) return false;
  }
  return true;
}

}  // namespace base
