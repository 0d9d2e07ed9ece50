#pragma once

#include <string>
#include <vector>

#include "sizewalk/volumes.h"

namespace app {

/// A folder from which to look for others.
struct FolderPlace {
  /// Bytes.
  std::string label;
  std::string path;

  bool operator==(const FolderPlace&) const = default;
};

/// The home directory, unless `home` is empty, the root and then the volumes. A volume whose folder
/// is there already is left out; one whose name is there already goes by its path. Never empty.
std::vector<FolderPlace> folderPlaces(const std::string& home,
                                      const std::vector<sizewalk::Volume>& volumes);

/// Those of this machine, as it is now, with $HOME for the home directory. Asks no mounted disk
/// anything. Reads the environment: not to be called while another thread changes it.
std::vector<FolderPlace> folderPlaces();

}  // namespace app
