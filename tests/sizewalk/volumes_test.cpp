#include "sizewalk/volumes.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

using Mounts = std::vector<MountEntry>;
using Texts = std::vector<std::string>;

const MountEntry kRoot{"/dev/sda2", "/", "ext4", "rw"};

MountEntry disk(const std::string& device, const std::string& mountPoint) {
  return {device, mountPoint, "ext4", "rw"};
}

Texts mountPoints(const std::vector<Volume>& volumes) {
  Texts texts;
  for (const Volume& volume : volumes) texts.push_back(volume.mountPoint);
  return texts;
}

/// The mount points of the chosen volumes, for a user whose home is on "/".
Texts chosen(const Mounts& mounts) {
  return mountPoints(chooseVolumes(mounts, {.homeDirectory = "/home/u"}));
}

/// As `chosen`, of a machine that has these besides its root.
Texts chosenBesideRoot(Mounts mounts) {
  mounts.insert(mounts.begin(), kRoot);
  Texts texts = chosen(mounts);
  if (texts.empty() || texts[0] != "/") return {"the root is not the first"};
  texts.erase(texts.begin());
  return texts;
}

std::string textOf(const Volume& volume) {
  const char* kinds[] = {"root", "home", "removable", "other"};
  return std::string(kinds[static_cast<int>(volume.kind)]) + " " + volume.mountPoint + " " +
         volume.displayName;
}

TEST(ChooseVolumes, OrdersByKindAndThenByName) {
  const Mounts mounts = {disk("/dev/sdf1", "/mnt/zoo"),
                         disk("/dev/sdd1", "/media/u/b"),
                         disk("/dev/sde1", "/run/media/u/a"),
                         disk("/dev/sdb1", "/srv"),
                         disk("/dev/sda3", "/home"),
                         kRoot,
                         {"nas:/music", "/net/apes", "nfs4", ""}};
  Texts texts;
  for (const Volume& volume : chooseVolumes(mounts, {.homeDirectory = "/home/u"})) {
    texts.push_back(textOf(volume));
  }
  EXPECT_EQ(texts, (Texts{"root / Filesystem", "home /home Home", "removable /run/media/u/a a",
                          "removable /media/u/b b", "other /net/apes apes", "other /srv srv",
                          "other /mnt/zoo zoo"}));
}

TEST(ChooseVolumes, OrdersEqualNamesByMountPoint) {
  EXPECT_EQ(chosenBesideRoot({disk("/dev/sdc1", "/mnt/disk"), disk("/dev/sdb1", "/data/disk")}),
            (Texts{"/data/disk", "/mnt/disk"}));
}

TEST(ChooseVolumes, HasARootOfAnyType) {
  for (const char* type : {"overlay", "tmpfs", "rootfs", "squashfs", "ramfs", "ext4"}) {
    EXPECT_EQ(chosen({{"none", "/", type, "rw"}}), Texts{"/"}) << type;
  }
}

TEST(ChooseVolumes, HasARootThatTheTableLacks) {
  EXPECT_EQ(chosen({}), Texts{"/"});
  EXPECT_EQ(chosen({disk("/dev/sdb1", "/mnt/a")}), (Texts{"/", "/mnt/a"}));
}

TEST(ChooseVolumes, LeavesOutWhatIsNoDisk) {
  EXPECT_EQ(chosenBesideRoot({{"proc", "/a", "proc", ""},
                              {"systemd-1", "/mnt/nas", "autofs", ""},
                              {"gvfsd-fuse", "/mnt/gvfs", "fuse.gvfsd-fuse", ""},
                              {"tmpfs", "/tmp", "tmpfs", ""},
                              {"tmpfs", "/media/u/memory", "tmpfs", ""},
                              {"overlay", "/srv/merged", "overlay", ""},
                              {"/dev/loop3", "/rofs", "squashfs", ""},
                              {"/dev/loop4", "/image", "erofs", ""}}),
            Texts{});
}

TEST(ChooseVolumes, LeavesOutThePlacesOfTheSystem) {
  for (const char* place :
       {"/proc/fs/nfsd", "/sys/fs/x", "/dev/disk", "/run", "/run/lock", "/run/user/1000/doc",
        "/run/media", "/run/mediator", "/snap/core/1", "/var/snap/x", "/var/lib/snapd/snap/core/1",
        "/var/lib/docker", "/var/lib/docker/volumes/a", "/var/lib/containers/storage",
        "/etc/resolv.conf", "/boot", "/boot/efi", "/efi"}) {
    EXPECT_EQ(chosenBesideRoot({disk("/dev/sdb1", place)}), Texts{}) << place;
  }
}

TEST(ChooseVolumes, KeepsPlacesThatOnlyBeginLikeThoseOfTheSystem) {
  for (const char* place : {"/runs", "/developer", "/snaps/a", "/var", "/var/lib", "/bootable",
                            "/usr", "/app", "/media", "/mnt", "/home"}) {
    const Volume volume = chooseVolumes({kRoot, disk("/dev/sdb1", place)}, {}).back();
    EXPECT_EQ(volume.mountPoint, place);
    EXPECT_EQ(volume.kind, VolumeKind::Other) << place;
  }
}

TEST(ChooseVolumes, LeavesOutHiddenFoldersAndRemovedMountPoints) {
  EXPECT_EQ(chosenBesideRoot({disk("/dev/sdb1", "/.snapshots"),
                              {"App", "/tmp/.mount_AppXy", "fuse.App", ""},
                              disk("/dev/sdd1", "/mnt/.cache/deep"),
                              disk("/dev/sde1", "/mnt/gone//deleted"),
                              disk("/dev/sdf1", "/mnt/a.b")}),
            Texts{"/mnt/a.b"});
}

TEST(ChooseVolumes, LeavesOutWhatIsNoPath) {
  EXPECT_EQ(chosenBesideRoot({disk("/dev/sdb1", "none"), disk("/dev/sdc1", "")}), Texts{});
}

TEST(ChooseVolumes, KeepsDiscsAndImagesThatTheUserMounted) {
  EXPECT_EQ(chosenBesideRoot({{"/dev/sr0", "/run/media/u/DVD", "udf", "ro"},
                              {"/dev/loop0", "/media/u/image", "iso9660", "ro"},
                              {"/dev/loop1", "/mnt/image", "ext4", "rw"},
                              {"/dev/sdb1", "/mnt/windows", "fuseblk", "rw"}}),
            (Texts{"/run/media/u/DVD", "/media/u/image", "/mnt/image", "/mnt/windows"}));
}

TEST(ChooseVolumes, TakesTheLastOfSeveralMountsOnOnePoint) {
  EXPECT_EQ(chosenBesideRoot({{"systemd-1", "/mnt/nas", "autofs", ""},
                              {"nas:/all", "/mnt/nas", "nfs4", ""},
                              disk("/dev/sdb1", "/mnt/hidden"),
                              {"tmpfs", "/mnt/hidden", "tmpfs", ""}}),
            Texts{"/mnt/nas"});
}

TEST(ChooseVolumes, TakesTheDiskOfTheLastMountOnOnePoint) {
  EXPECT_EQ(chosen({{"rootfs", "/", "rootfs", ""},
                    kRoot,
                    disk("/dev/sdb1", "/mnt/a"),
                    disk("/dev/sdc1", "/mnt/a"),
                    disk("/dev/sdb1", "/mnt/b"),
                    disk("/dev/sda2", "/mnt/c")}),
            (Texts{"/", "/mnt/a", "/mnt/b"}));
}

TEST(ChooseVolumes, ShowsEveryDiskOnceAtItsFirstMountPoint) {
  EXPECT_EQ(chosenBesideRoot({disk("/dev/sdb1", "/srv/data"),
                              disk("/dev/sdb1", "/exports/data"),
                              disk("/dev/sda2", "/mnt/bound"),
                              {"//nas/all", "/mnt/one", "cifs", ""},
                              {"//nas/all", "/mnt/another", "cifs", ""},
                              {"nas:/all", "/mnt/other", "nfs4", ""},
                              {"u@nas:", "/mnt/ssh", "fuse.sshfs", ""}}),
            (Texts{"/srv/data", "/mnt/one", "/mnt/other", "/mnt/ssh"}));
}

TEST(ChooseVolumes, PrefersTheRootAndTheHomeAmongMountsOfOneDisk) {
  EXPECT_EQ(chosen({disk("/dev/sdb1", "/mnt/all"), disk("/dev/sda2", "/mnt/root"),
                    disk("/dev/sdb1", "/media/u/all"), disk("/dev/sdb1", "/home"), kRoot}),
            (Texts{"/", "/home"}));
  EXPECT_EQ(chosenBesideRoot({disk("/dev/sdb1", "/mnt/all"), disk("/dev/sdb1", "/media/u/all")}),
            Texts{"/media/u/all"});
}

TEST(ChooseVolumes, ShowsSubvolumesAndDatasetsOnce) {
  const Mounts subvolumes = {{"/dev/sda3", "/", "btrfs", "subvol=/root"},
                             {"/dev/sda3", "/home", "btrfs", "subvol=/home"},
                             {"/dev/sda3", "/srv", "btrfs", "subvol=/srv"}};
  EXPECT_EQ(chosen(subvolumes), Texts{"/"});
  const Mounts datasets = {{"rpool/ROOT/os", "/", "zfs", ""},
                           {"rpool/HOME/u", "/home/u", "zfs", ""},
                           {"tank", "/tank", "zfs", ""},
                           {"tank/photos", "/tank/photos", "zfs", ""}};
  EXPECT_EQ(chosen(datasets), (Texts{"/", "/tank"}));
}

TEST(ChooseVolumes, TakesEqualWordsForDifferentDisks) {
  EXPECT_EQ(chosenBesideRoot({{"none", "/mnt/a", "9p", ""},
                              {"none", "/mnt/b", "9p", ""},
                              {"/dev/fuse", "/mnt/c", "fuse", ""},
                              {"/dev/fuse", "/mnt/d", "fuse", ""}}),
            (Texts{"/mnt/a", "/mnt/b", "/mnt/c", "/mnt/d"}));
}

/// The mount point of the volume that is called the user's home; empty when there is none.
std::string homeVolume(const std::string& home, const Mounts& mounts) {
  for (const Volume& volume : chooseVolumes(mounts, {.homeDirectory = home})) {
    if (volume.kind == VolumeKind::Home) return volume.mountPoint;
  }
  return {};
}

TEST(ChooseVolumes, FindsTheVolumeOfTheHome) {
  const Mounts mounts = {kRoot, disk("/dev/sdb1", "/home"), disk("/dev/sdc1", "/home/u"),
                         disk("/dev/sdd1", "/home/u/x"), disk("/dev/sde1", "/run/media/v/usb")};
  EXPECT_EQ(homeVolume("/home/u", mounts), "/home/u");
  EXPECT_EQ(homeVolume("/home/u/", mounts), "/home/u");
  EXPECT_EQ(homeVolume("/home/user", mounts), "/home");
  EXPECT_EQ(homeVolume("/home/v/w", mounts), "/home");
  EXPECT_EQ(homeVolume("/run/media/v/usb/home", mounts), "/run/media/v/usb");
  EXPECT_EQ(homeVolume("/homes/u", mounts), "") << "on the root";
  EXPECT_EQ(homeVolume("/root", mounts), "");
  EXPECT_EQ(homeVolume("/", mounts), "");
  EXPECT_EQ(homeVolume("", mounts), "");
}

TEST(ChooseVolumes, HasNoHomeWhereItIsOnNoDisk) {
  EXPECT_EQ(
      homeVolume("/home/u", {kRoot, disk("/dev/sdb1", "/home"), {"tmpfs", "/home/u", "tmpfs", ""}}),
      "");
}

TEST(ChooseVolumes, FindsAHomeInAHiddenFolder) {
  EXPECT_EQ(homeVolume("/home/.cloud/u", {kRoot, disk("/dev/sdb1", "/home/.cloud")}),
            "/home/.cloud");
}

TEST(ChooseVolumes, ShowsTheHostsDisksInASandbox) {
  const Mounts mounts = {{"tmpfs", "/", "tmpfs", ""},
                         disk("/dev/sda2", "/usr"),
                         disk("/dev/sda2", "/app"),
                         disk("/dev/sda2", "/etc/timezone"),
                         disk("/dev/sda2", "/run/host/fonts"),
                         disk("/dev/sdd1", "/var/cache"),
                         disk("/dev/sda2", "/var/home"),
                         disk("/dev/sda2", "/home/u/.var/app/x"),
                         disk("/dev/sdb1", "/run/media/u/usb"),
                         disk("/dev/sdc1", "/mnt/data")};
  EXPECT_EQ(
      mountPoints(chooseVolumes(mounts, {.homeDirectory = "/var/home/u", .insideFlatpak = true})),
      (Texts{"/var/home", "/run/media/u/usb", "/mnt/data"}));
  EXPECT_EQ(mountPoints(chooseVolumes({mounts[0], mounts[1]}, {.insideFlatpak = true})), Texts{});
}

TEST(ChooseVolumes, NamesByLabelElseByMountPoint) {
  const Mounts mounts = {kRoot,
                         disk("/dev/sda3", "/home"),
                         disk("/dev/sdb1", "/media/u/1234-ABCD"),
                         disk("/dev/mapper/vault", "/mnt/vault"),
                         disk("/dev/sdc1", "/mnt/My\nold"),
                         disk("/dev/sdd1", "/mnt/none")};
  Texts names;
  for (const Volume& volume : chooseVolumes(mounts, {.homeDirectory = "/home/u",
                                                    .labels = {{"/dev/sda2", "system"},
                                                               {"/dev/sda3", "users"},
                                                               {"/dev/sdb1", "Holiday 2019"},
                                                               {"/dev/mapper/vault", "\xff"},
                                                               {"/dev/sdd1", ""}}})) {
    names.push_back(volume.displayName);
  }
  EXPECT_EQ(names, (Texts{"Filesystem", "Home", "Holiday 2019", "My\nold", "none", "\xff"}));
}

/// A device directory of the test's own: "sda1" is labelled, and "dm-0", called "mapper/vault".
class DeviceDirectory {
 public:
  DeviceDirectory() {
    test::writeFile(path() + "/sda1");
    test::writeFile(path() + "/sdb1");
    test::writeFile(path() + "/dm-0");
    link("../dm-0", "mapper/vault");
    label("../../sda1", "My\\x20disk\\x2f\\xc3\\xa4");
    label("../../dm-0", "vault");
    label("../../gone", "gone");
  }
  std::string path() const { return directory_.path(); }
  void label(const std::string& target, const std::string& name) const {
    link(target, "disk/by-label/" + name);
  }

 private:
  void link(const std::string& target, const std::string& name) const {
    const std::filesystem::path place(directory_ / name);
    test::makeDirectory(place.parent_path());
    std::filesystem::create_symlink(target, place);
  }
  test::TempDirectory directory_;
};

using Labels = std::map<std::string, std::string>;

TEST(ReadVolumeLabels, FindsThemForWhatTheTableCallsTheDevices) {
  const DeviceDirectory devices;
  const std::string sda1 = devices.path() + "/sda1", vault = devices.path() + "/mapper/vault";
  EXPECT_EQ(readVolumeLabels({disk(sda1, "/a"), disk(vault, "/b"), disk(sda1, "/c"),
                              disk(devices.path() + "/sdb1", "/d"),
                              disk(devices.path() + "/gone", "/e"), disk("none", "/f")},
                             devices.path()),
            (Labels{{sda1, "My disk/\xc3\xa4"}, {vault, "vault"}}));
}

TEST(ReadVolumeLabels, KeepsWhatIsNoEscape) {
  for (const char* name : {"a\\x2", "a\\x", "a\\", "a\\xg0", "a\\x0g", "a\\y20", "x20"}) {
    const DeviceDirectory devices;
    devices.label("../../sdb1", name);
    const std::string sdb1 = devices.path() + "/sdb1";
    EXPECT_EQ(readVolumeLabels({disk(sdb1, "/a")}, devices.path()), (Labels{{sdb1, name}}));
  }
}

TEST(ReadVolumeLabels, LooksAtNoPathOutsideTheDevices) {
  const DeviceDirectory devices;
  const test::TempDirectory elsewhere;
  const std::string source = elsewhere / "source";
  std::filesystem::create_symlink(devices.path() + "/sda1", source);
  EXPECT_EQ(readVolumeLabels({disk(source, "/a")}, devices.path()), Labels{});
}

TEST(ReadVolumeLabels, AreNoneWithoutTheDirectory) {
  const test::TempDirectory empty;
  test::writeFile(empty / "sda1");
  EXPECT_EQ(readVolumeLabels({disk(empty / "sda1", "/a")}, empty.path()), Labels{});
}

TEST(ListVolumes, StartsWithTheRoot) {
  if (access("/.flatpak-info", F_OK) == 0) GTEST_SKIP() << "inside a sandbox";
  const std::vector<Volume> volumes = listVolumes();
  ASSERT_FALSE(volumes.empty());
  EXPECT_EQ(textOf(volumes[0]), "root / Filesystem");
}

TEST(ListVolumes, AreNoMoreWithBindMountsAndMemory) {
  const test::PrivateHome home;
  const test::TempDirectory directory;
  for (const char* name : {"plain", "bound", "memory"}) test::makeDirectory(directory / name);
  test::writeFile(directory / "file");
  test::writeFile(directory / "boundFile");
  const auto bind = [&](const char* from, const char* to) {
    return mount((directory / from).c_str(), (directory / to).c_str(), nullptr, MS_BIND, nullptr);
  };
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    const Texts before = mountPoints(listVolumes());
    const std::size_t mountsBefore = readMounts().size();
    if (bind("plain", "bound") != 0 || bind("file", "boundFile") != 0) return "cannot bind";
    if (mount("tmpfs", (directory / "memory").c_str(), "tmpfs", 0, nullptr) != 0) {
      return "cannot mount";
    }
    if (readMounts().size() != mountsBefore + 3) return "the table has not three mounts more";
    return mountPoints(listVolumes()) == before ? "" : "the volumes have changed";
  });
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

}  // namespace
}  // namespace sizewalk
