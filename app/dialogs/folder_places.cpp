#include "app/dialogs/folder_places.h"

#include <algorithm>
#include <cstdlib>

#include "app/dialogs/sub_folders.h"

namespace app {

std::vector<FolderPlace> folderPlaces(const std::string& home,
                                      const std::vector<sizewalk::Volume>& volumes) {
  std::vector<FolderPlace> places;
  if (!home.empty()) places.push_back({"Home", std::string(withoutEndingSlashes(home))});
  places.push_back({"Filesystem", "/"});
  for (const sizewalk::Volume& volume : volumes) {
    const std::string& path = volume.mountPoint;
    if (!path.starts_with('/') || std::ranges::count(places, path, &FolderPlace::path)) continue;
    const bool named = std::ranges::count(places, volume.displayName, &FolderPlace::label) == 0;
    places.push_back({named ? volume.displayName : path, path});
  }
  return places;
}

std::vector<FolderPlace> folderPlaces() {
  const char* home = std::getenv("HOME");
  return folderPlaces(home ? home : "", sizewalk::listVolumes());
}

}  // namespace app
