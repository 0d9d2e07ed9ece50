#pragma once

#include <map>
#include <string>
#include <vector>

#include "sizewalk/mount_table.h"

namespace sizewalk {

/// In the order in which volumes are shown.
enum class VolumeKind {
  /// "/".
  Root,
  /// Holds the user's home directory while "/" does not.
  Home,
  /// Mounted below "/run/media" or "/media".
  Removable,
  Other,
};

/// What a person calls a disk: a mounted file system with room for files.
struct Volume {
  /// "Filesystem", "Home", the label, or the last component of the mount point. Bytes.
  std::string displayName;
  /// Begins with "/"; no other volume has it.
  std::string mountPoint;
  VolumeKind kind = VolumeKind::Other;
};

/// What the choice of volumes depends on besides the mount table.
struct VolumeSurroundings {
  /// Empty when there is none.
  std::string homeDirectory = {};
  /// In a Flatpak sandbox "/" is the sandbox itself, and the system's folders belong to its
  /// runtime.
  bool insideFlatpak = false;
  /// The labels of devices, by what the mount table calls them.
  std::map<std::string, std::string> labels = {};
};

/// The volumes among `mounts`, in the order of their kinds, then by name. "/" is one of them,
/// except in a sandbox, even if the table lacks it. Asks the system nothing. What cannot be seen in
/// the table remains for who measures them: a volume of total size 0, or whose mount point is no
/// directory, is not to be shown.
std::vector<Volume> chooseVolumes(const std::vector<MountEntry>& mounts,
                                  const VolumeSurroundings& surroundings);

/// The labels of the devices in `mounts` as udev keeps them below `devices`. Reads that directory
/// only. Empty where there is none, as in a sandbox.
std::map<std::string, std::string> readVolumeLabels(const std::vector<MountEntry>& mounts,
                                                    const std::string& devices = "/dev");

/// The volumes of this machine, as this process sees them now. Asks no mounted disk anything, so it
/// returns even while one of them hangs; see `VolumeMeter` for their sizes. Reads the environment:
/// not to be called while another thread changes it.
std::vector<Volume> listVolumes();

}  // namespace sizewalk
