// Which mounts are volumes. A table of a desktop lists some forty mounts, of which a person knows
// two or three. What decides is, in this order: of several mounts on one point the last, the type,
// the place, and of several mounts of one disk the one of the first kind. All of it can be seen in
// the table: a question to the file system itself would wait for a network server that is gone, and
// the choice is made on the window thread.

#include "sizewalk/volumes.h"

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <set>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "base/home_directory.h"

namespace sizewalk {

namespace {

/// In memory, or a view of other file systems, or read-only images of packages: no disks of their
/// own.
constexpr std::string_view kTypesWithoutDisk[] = {"tmpfs", "overlay", "squashfs", "erofs"};

/// What is mounted here belongs to the system: its run-time state, snaps, containers, the files
/// that a container gets from its host, and what the machine starts from.
constexpr std::string_view kSystemPlaces[] = {
    "/proc",           "/sys",      "/dev", "/run",
    "/snap",           "/var/snap", "/etc", "/var/lib/snapd",
    "/var/lib/docker", "/boot",     "/efi", "/var/lib/containers",
};

/// In a sandbox these are the runtime's and the application's.
constexpr std::string_view kSandboxPlaces[] = {"/usr", "/app", "/var"};

constexpr std::string_view kRemovablePlaces[] = {"/run/media", "/media"};

bool isBelow(std::string_view path, std::string_view directory) {
  return path.size() > directory.size() + 1 && path.starts_with(directory) &&
         path[directory.size()] == '/';
}

template <typename Places>
bool isIn(std::string_view path, const Places& places) {
  return std::any_of(std::begin(places), std::end(places), [path](std::string_view place) {
    return path == place || isBelow(path, place);
  });
}

bool isRemovable(std::string_view mountPoint) {
  return std::any_of(std::begin(kRemovablePlaces), std::end(kRemovablePlaces),
                     [mountPoint](std::string_view place) { return isBelow(mountPoint, place); });
}

bool hasDisk(std::string_view type) {
  return !isPseudoFileSystem(type) &&
         std::find(std::begin(kTypesWithoutDisk), std::end(kTypesWithoutDisk), type) ==
             std::end(kTypesWithoutDisk);
}

/// Whether a person finds nothing of theirs there: the system's places, hidden folders (snapshots,
/// mounted packages), and mount points that were removed.
bool isOutOfSight(std::string_view mountPoint, const VolumeSurroundings& surroundings) {
  if (mountPoint.find("/.") != std::string_view::npos) return true;
  if (mountPoint.ends_with("//deleted")) return true;
  if (isRemovable(mountPoint)) return false;
  return isIn(mountPoint, kSystemPlaces) ||
         (surroundings.insideFlatpak && isIn(mountPoint, kSandboxPlaces));
}

/// What tells one disk from another; empty where the table does not say. The subvolumes of a disk
/// name the same device, the datasets of a ZFS pool begin with its name.
std::string diskOf(const MountEntry& entry) {
  const std::string& device = entry.device;
  if (entry.type == "zfs") return device.substr(0, device.find('/'));
  // A plain word ("none", "share") is free for all to use, and "/dev/fuse" stands for any server.
  const bool isUnique = device.find_first_of("/:") != std::string::npos && device != "/dev/fuse";
  return isUnique ? device : std::string();
}

std::string lastComponent(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string nameOf(const MountEntry& entry, VolumeKind kind,
                   const VolumeSurroundings& surroundings) {
  if (kind == VolumeKind::Root) return "Filesystem";
  if (kind == VolumeKind::Home) return "Home";
  const auto label = surroundings.labels.find(entry.device);
  const bool isLabelled = label != surroundings.labels.end() && !label->second.empty();
  return isLabelled ? label->second : lastComponent(entry.mountPoint);
}

/// The mounts that are reached through their mount points: of several on one point the last hides
/// the others. In the order of the table.
std::vector<const MountEntry*> reachableMounts(const std::vector<MountEntry>& mounts) {
  std::set<std::string_view> taken;
  std::vector<const MountEntry*> reachable;
  for (auto entry = mounts.rbegin(); entry != mounts.rend(); ++entry) {
    if (entry->mountPoint.starts_with('/') && taken.insert(entry->mountPoint).second) {
      reachable.push_back(&*entry);
    }
  }
  std::reverse(reachable.begin(), reachable.end());
  return reachable;
}

/// The mount point that holds the home directory; empty when "/" does.
std::string mountPointOfHome(const std::vector<const MountEntry*>& mounts,
                             const std::string& home) {
  std::string longest;
  for (const MountEntry* entry : mounts) {
    const std::string& mountPoint = entry->mountPoint;
    const bool holdsHome = mountPoint != "/" && isBelow(home + "/.", mountPoint);
    if (holdsHome && mountPoint.size() > longest.size()) longest = mountPoint;
  }
  return longest;
}

struct Candidate {
  const MountEntry* entry;
  VolumeKind kind;
};

/// The mounts that could be volumes, each disk as often as it is mounted, in the order of their
/// kinds and of the table.
std::vector<Candidate> findCandidates(const std::vector<const MountEntry*>& mounts,
                                      const VolumeSurroundings& surroundings) {
  const std::string home = mountPointOfHome(mounts, surroundings.homeDirectory);
  std::vector<Candidate> candidates;
  for (const MountEntry* entry : mounts) {
    const std::string& mountPoint = entry->mountPoint;
    if (mountPoint == "/") {
      if (!surroundings.insideFlatpak) candidates.push_back({entry, VolumeKind::Root});
    } else if (!hasDisk(entry->type)) {
      continue;
    } else if (mountPoint == home) {
      candidates.push_back({entry, VolumeKind::Home});
    } else if (!isOutOfSight(mountPoint, surroundings)) {
      candidates.push_back(
          {entry, isRemovable(mountPoint) ? VolumeKind::Removable : VolumeKind::Other});
    }
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.kind < b.kind; });
  return candidates;
}

int hexDigit(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::size_t value = kDigits.find(c);
  return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

/// udev writes bytes of a label that do not suit a file name as "\x20".
std::string decodeLabel(std::string_view name) {
  std::string label;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool isEscape = name.substr(i).starts_with("\\x") && i + 3 < name.size() &&
                          hexDigit(name[i + 2]) >= 0 && hexDigit(name[i + 3]) >= 0;
    label +=
        isEscape ? static_cast<char>(hexDigit(name[i + 2]) * 16 + hexDigit(name[i + 3])) : name[i];
    if (isEscape) i += 3;
  }
  return label;
}

/// The device node that `path` leads to; empty when there is none.
std::string resolve(const std::string& path) {
  std::array<char, PATH_MAX> resolved;
  return ::realpath(path.c_str(), resolved.data()) ? resolved.data() : std::string();
}

std::map<std::string, std::string> labelsOfNodes(const std::string& directory) {
  std::map<std::string, std::string> labels;
  std::error_code error;
  std::filesystem::directory_iterator links(directory, error);
  for (; !error && links != std::filesystem::directory_iterator(); links.increment(error)) {
    const std::string node = resolve(links->path());
    if (!node.empty()) labels[node] = decodeLabel(links->path().filename().native());
  }
  return labels;
}

}  // namespace

std::vector<Volume> chooseVolumes(const std::vector<MountEntry>& mounts,
                                  const VolumeSurroundings& surroundings) {
  static const MountEntry kUnlistedRoot{"", "/", "", ""};
  std::vector<const MountEntry*> reachable = reachableMounts(mounts);
  const bool rootIsListed = std::any_of(reachable.begin(), reachable.end(),
                                        [](const MountEntry* e) { return e->mountPoint == "/"; });
  if (!rootIsListed) reachable.push_back(&kUnlistedRoot);

  std::vector<Volume> volumes;
  std::set<std::string> disks;
  for (const auto& [entry, kind] : findCandidates(reachable, surroundings)) {
    const std::string disk = diskOf(*entry);
    if (!disk.empty() && !disks.insert(disk).second) continue;
    volumes.push_back({nameOf(*entry, kind, surroundings), entry->mountPoint, kind});
  }
  std::sort(volumes.begin(), volumes.end(), [](const Volume& a, const Volume& b) {
    return std::tie(a.kind, a.displayName, a.mountPoint) <
           std::tie(b.kind, b.displayName, b.mountPoint);
  });
  return volumes;
}

std::map<std::string, std::string> readVolumeLabels(const std::vector<MountEntry>& mounts,
                                                    const std::string& devices) {
  const std::map<std::string, std::string> ofNodes = labelsOfNodes(devices + "/disk/by-label");
  std::map<std::string, std::string> labels;
  for (const MountEntry& entry : mounts) {
    // Any other path leads to a file system that may hang.
    if (!isBelow(entry.device, devices)) continue;
    // The table has names like "/dev/mapper/vault", the labels lead to nodes like "/dev/dm-0".
    const auto label = ofNodes.find(resolve(entry.device));
    if (label != ofNodes.end()) labels[entry.device] = label->second;
  }
  return labels;
}

std::vector<Volume> listVolumes() {
  const std::vector<MountEntry> mounts = readMounts();
  return chooseVolumes(mounts, {.homeDirectory = base::homeDirectory(),
                                .insideFlatpak = ::access("/.flatpak-info", F_OK) == 0,
                                .labels = readVolumeLabels(mounts)});
}

}  // namespace sizewalk
