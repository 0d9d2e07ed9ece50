#include "app/dialogs/sub_folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace app {

namespace {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

bool leadsToFolder(int directory, const dirent& entry) {
  if (entry.d_type == DT_DIR) return true;
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return false;
  struct stat status {};
  return ::fstatat(directory, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

SubFolders readSubFolders(const std::string& path) {
  const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(path.c_str()));
  if (!directory) return {};
  // Names are resolved from the open folder: no long path is walked again for each of them.
  const int folder = ::dirfd(directory.get());
  SubFolders subFolders{.readable = true, .folders = {}};
  while (const dirent* entry = ::readdir(directory.get())) {
    if (entry->d_name[0] == '.' || !leadsToFolder(folder, *entry)) continue;
    const bool accessible = ::faccessat(folder, entry->d_name, R_OK | X_OK, 0) == 0;
    subFolders.folders.push_back({entry->d_name, accessible});
  }
  // std::string compares as unsigned bytes.
  std::ranges::sort(subFolders.folders, {}, &SubFolder::name);
  return subFolders;
}

std::string pathInside(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

std::string_view withoutEndingSlashes(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

std::string pathAround(std::string_view path) {
  path = withoutEndingSlashes(path);
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return "/";
  return std::string(withoutEndingSlashes(path.substr(0, std::max<std::size_t>(slash, 1))));
}

}  // namespace app
