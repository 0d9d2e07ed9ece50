#include "app/actions/item_identity.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "sizewalk/long_path.h"

namespace app {

namespace {
std::optional<ItemIdentity> identityAt(const std::string& path, int flags) {
  const std::optional<sizewalk::ReachedPath> reached = sizewalk::reachPath(path);
  struct stat status {};
  if (!reached || ::fstatat(reached->directory(), reached->rest.c_str(), &status, flags) != 0) {
    return std::nullopt;
  }
  return ItemIdentity{status.st_dev, status.st_ino};
}
}  // namespace

std::optional<ItemIdentity> identify(const std::string& path) {
  return identityAt(path, AT_SYMLINK_NOFOLLOW);
}

std::optional<ItemIdentity> identifyTarget(const std::string& path) { return identityAt(path, 0); }

}  // namespace app
