#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sizewalk {

/// One mounted file system, as a line of the mount table tells it. All of it is bytes.
struct MountEntry {
  /// What is mounted, with the table's escapes: a device, "host:/path", or any word.
  std::string device;
  /// Where, with the escapes decoded.
  std::string mountPoint;
  std::string type;
  /// Comma separated, with the table's escapes.
  std::string options;
};

/// The file systems that this process sees mounted, in the order of the table; a table that cannot
/// be opened gives none. Asks no mounted file system anything, so it returns even while one of them
/// hangs. Any thread.
///
/// A field beyond its limit (device 1023 bytes, mount point 2047, type 255, options 2047) is cut
/// there and, but for the options, its rest is taken for the next field. A line beyond 4095 bytes
/// is taken for several lines, broken after every 4095th. A line of less than four fields is left
/// out.
std::vector<MountEntry> readMounts(const std::string& tablePath = "/proc/self/mounts");

/// Whether one of `mounts` is mounted at `path`, which is absolute and ends with no "/" but that of
/// the root.
bool isMountPoint(const std::vector<MountEntry>& mounts, std::string_view path);

/// Whether file systems of `type` are a view into the kernel and hold no data of a user. Others in
/// memory or made of other ones, "tmpfs" and "overlay", are not.
bool isPseudoFileSystem(std::string_view type);

}  // namespace sizewalk
