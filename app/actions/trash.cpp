#include "app/actions/trash.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "app/actions/trash_directory.h"

namespace app {

namespace {

constexpr const char* kNotTrashable = "That is not something that can be moved to the trash.";
constexpr const char* kNowhere = "It is on a filesystem with nowhere to put a trash directory.";

std::optional<std::string> environment(const char* name) {
  const char* value = std::getenv(name);
  if (!value || !*value) return std::nullopt;
  return value;
}

std::optional<std::string> homeTrash() {
  if (const auto data = environment("XDG_DATA_HOME")) return *data + "/Trash";
  if (const auto home = environment("HOME")) return *home + "/.local/share/Trash";
  return std::nullopt;
}

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

/// The highest directory above `path` up to which all lie on `device`. Nothing when not even the
/// parent does: then the item is itself what was mounted.
std::optional<std::string> topDirectory(const std::string& path, std::uint64_t device) {
  std::optional<std::string> top;
  for (std::string at = path; at != "/";) {
    at = parentOf(at);
    const std::optional<ItemIdentity> directory = identifyTarget(at);
    if (!directory || directory->device != device) break;
    top = at;
  }
  return top;
}

/// Into the trash at the top of the volume that the item lies on. False without a sentence when
/// there can be none.
bool trashOnItsVolume(const TrashItem& item, std::string* error) {
  const std::optional<ItemIdentity> found = identify(item.path);
  if (!found) return false;
  const std::optional<std::string> top = topDirectory(item.path, found->device);
  // The top of the root file system belongs to the system, not to the user.
  if (!top || *top == "/") return false;
  const std::string trashDir = *top + "/.Trash-" + std::to_string(::getuid());
  return trashInto(trashDir, item, item.path.substr(top->size() + 1), error);
}

bool moveItem(const TrashItem& item, std::string& error) {
  if (item.path.empty() || item.path == "/") {
    error = kNotTrashable;
    return false;
  }
  if (const std::optional<std::string> home = homeTrash()) {
    if (trashInto(*home, item, item.path, &error)) return true;
    if (!error.empty()) return false;
  }
  if (trashOnItsVolume(item, &error)) return true;
  if (error.empty()) error = kNowhere;
  return false;
}

bool moveItemOrSayWhy(const TrashItem& item, std::string* error) {
  std::string why;
  const bool moved = moveItem(item, why);
  if (error) *error = std::move(why);
  return moved;
}

}  // namespace

bool moveToTrash(const std::string& path, std::string* error) {
  return moveItemOrSayWhy({path}, error);
}

bool moveToTrash(const std::string& path, const ItemIdentity& identity, std::string* error) {
  return moveItemOrSayWhy({path, identity}, error);
}

}  // namespace app
