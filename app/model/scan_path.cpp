#include "app/model/scan_path.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "sizewalk/directory_reader.h"

namespace app {

namespace {

namespace fs = std::filesystem;

/// A path beyond what the kernel takes is used as it stands: only it, not what links on the way
/// make of it, can be asked for.
std::string resolveLinks(const std::string& path) {
  if (path.size() >= PATH_MAX) return path;
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  return real ? real.get() : std::string();
}

}  // namespace

std::string absolutePath(const std::string& path) {
  if (path.empty()) return path;
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  if (error) return path;  // the working directory is gone: the scan will say what is wrong
  std::string normal;
  for (const fs::path& part : absolute) {
    if (part.empty() || part == "." || part == "/") continue;
    normal.append("/").append(part.native());
  }
  return normal.empty() ? "/" : normal;
}

std::string withoutWaysUp(const std::string& path) {
  const fs::path parts(path);
  if (std::ranges::find(parts, "..") == parts.end()) return path;
  std::error_code error;
  const fs::path real = fs::canonical(parts, error);
  return error ? path : real.native();  // the scan will say what is wrong with it
}

ResolvedFolder resolveFolder(const std::string& path) {
  const std::string real = resolveLinks(path);
  if (real.empty()) return {{}, 0, path.empty() ? ENOENT : errno};
  // A folder that cannot be opened would show as an empty map without a word.
  const base::FileDescriptor folder = sizewalk::openDirectory(real);
  if (!folder.valid()) return {{}, 0, errno};
  struct statx status;
  if (statx(folder.get(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_BTIME | STATX_CTIME,
            &status) != 0) {
    return {{}, 0, errno};
  }
  return {real, sizewalk::birthOrChangeTime(status), 0};
}

}  // namespace app
