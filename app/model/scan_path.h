#pragma once

#include <cstdint>
#include <string>

namespace app {

/// `path` made absolute against the working directory, without "." and needless slashes. ".."
/// stays: a symbolic link may stand before it, so that only the file system knows where it leads.
/// Asks no file system. An empty path stays empty.
std::string absolutePath(const std::string& path);

// The following wait for the file system that holds the path, perhaps without end: never on the
// window thread.

/// An absolute path without "..": one that holds it is replaced by what it leads to. Where that
/// cannot be found out the path stays as it is.
std::string withoutWaysUp(const std::string& path);

/// The folder that a path stands for once every symbolic link on the way is followed.
struct ResolvedFolder {
  std::string path;
  /// As `sizewalk::birthOrChangeTime`.
  std::uint32_t birthTime = 0;
  /// An errno, 0 when the folder can be scanned.
  int error = 0;
};

/// `path` is absolute. One beyond what the kernel takes is used as it stands.
ResolvedFolder resolveFolder(const std::string& path);

}  // namespace app
