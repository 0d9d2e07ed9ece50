#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace app {

/// A folder inside the one that was read.
struct SubFolder {
  /// Bytes, as the file system has them.
  std::string name;
  /// It may be read and entered.
  bool accessible = false;

  bool operator==(const SubFolder&) const = default;
};

/// What there is to choose inside a folder.
struct SubFolders {
  /// False when the folder could not be opened; there are no sub-folders then.
  bool readable = false;
  /// By name, in the order of bytes.
  std::vector<SubFolder> folders;
};

/// Finds the folders inside `path`, and the links that lead to folders. Those whose name begins
/// with "." are left out. Any thread; waits, without end in the worst case, for the server of a
/// folder on the network.
SubFolders readSubFolders(const std::string& path);

/// The path of `name` inside the folder `folder`.
std::string pathInside(const std::string& folder, std::string_view name);

/// The folder around the one at `path`: without the last component, "/" when nothing else is left.
/// Slashes at the end do not count.
std::string pathAround(std::string_view path);

/// `path` without slashes at its end, unless it consists of them: then "/".
std::string_view withoutEndingSlashes(std::string_view path);

}  // namespace app
