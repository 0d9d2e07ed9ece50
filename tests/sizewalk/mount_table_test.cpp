#include "sizewalk/mount_table.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/mount_namespace.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {

bool operator==(const MountEntry& a, const MountEntry& b) {
  return a.device == b.device && a.mountPoint == b.mountPoint && a.type == b.type &&
         a.options == b.options;
}

void PrintTo(const MountEntry& entry, std::ostream* out) {
  *out << entry.device << '|' << entry.mountPoint << '|' << entry.type << '|' << entry.options;
}

namespace {

using Entries = std::vector<MountEntry>;

Entries parsed(std::string_view table) {
  const test::TempDirectory directory;
  test::writeFile(directory / "mounts", table);
  return readMounts(directory / "mounts");
}

/// The mount point that the table writes as `escaped`.
std::string mountPointOf(const std::string& escaped) {
  const Entries entries = parsed("/dev/sda1 " + escaped + " ext4 rw 0 0\n");
  return entries.size() == 1 ? entries[0].mountPoint : "not one entry";
}

TEST(ReadMounts, GivesTheFieldsOfEveryLineInOrder) {
  EXPECT_EQ(parsed("proc /proc proc rw,nosuid 0 0\n"
                   "/dev/sda2 / ext4 rw,relatime 0 1\n"
                   "nas:/photos /mnt/photos nfs4 rw,vers=4.2 0 0\n"),
            (Entries{{"proc", "/proc", "proc", "rw,nosuid"},
                     {"/dev/sda2", "/", "ext4", "rw,relatime"},
                     {"nas:/photos", "/mnt/photos", "nfs4", "rw,vers=4.2"}}));
}

TEST(ReadMounts, GivesNothingWithoutATable) {
  const test::TempDirectory directory;
  EXPECT_EQ(readMounts(directory / "missing"), Entries{});
  EXPECT_EQ(readMounts(directory.path()), Entries{}) << "a directory";
  EXPECT_EQ(parsed(""), Entries{});
}

TEST(ReadMounts, SkipsShortLinesAndGoesOnBehindThem) {
  EXPECT_EQ(parsed("\n"
                   "   \n"
                   "/dev/sda1\n"
                   "/dev/sda1 /a\n"
                   "/dev/sda1 /b ext4\n"
                   "/dev/sda1 /c ext4 rw\n"
                   "/dev/sda1 /d ext4 rw"),
            (Entries{{"/dev/sda1", "/c", "ext4", "rw"}, {"/dev/sda1", "/d", "ext4", "rw"}}));
}

TEST(ReadMounts, TakesAnyWhiteSpaceBetweenFields) {
  EXPECT_EQ(parsed(" \t/dev/sda1 \t /a\text4\t\trw\n"),
            (Entries{{"/dev/sda1", "/a", "ext4", "rw"}}));
}

TEST(ReadMounts, DecodesTheMountPoint) {
  EXPECT_EQ(mountPointOf("/media/My\\040Disk"), "/media/My Disk");
  EXPECT_EQ(mountPointOf("/a\\011b\\012c\\134d\\043"), "/a\tb\nc\\d#");
  EXPECT_EQ(mountPointOf("\\057\\303\\244"), "/\xc3\xa4");
}

TEST(ReadMounts, DecodesNothingButTheMountPoint) {
  EXPECT_EQ(parsed("//nas/My\\040Disk /a fuse\\040x rw,x=\\040\n"),
            (Entries{{"//nas/My\\040Disk", "/a", "fuse\\040x", "rw,x=\\040"}}));
}

TEST(ReadMounts, KeepsBackslashesThatStartNoEscape) {
  EXPECT_EQ(mountPointOf("/a\\x41b"), "/a\\x41b");
  EXPECT_EQ(mountPointOf("/a\\840b"), "/a\\840b");
  EXPECT_EQ(mountPointOf("/a\\04"), "/a\\04") << "only two characters follow";
  EXPECT_EQ(mountPointOf("/a\\"), "/a\\");
  EXPECT_EQ(mountPointOf("/a\\\\040"), "/a\\ ") << "the second one starts an escape";
}

TEST(ReadMounts, ChecksOnlyTheFirstOctalDigit) {
  EXPECT_EQ(mountPointOf("/\\089"), "/I") << "0 * 64 + 8 * 8 + 9";
  EXPECT_EQ(mountPointOf("/\\0x1"), "/A") << "72 * 8 + 1, cut to a byte";
  EXPECT_EQ(mountPointOf("/\\0/1"), "/\xf9") << "-1 * 8 + 1";
  EXPECT_EQ(mountPointOf("/\\501"), "/A") << "321, cut to a byte";
  EXPECT_EQ(mountPointOf("/\\777"), "/\xff");
  EXPECT_EQ(mountPointOf("/\\400x"), std::string("/\0x", 3));
}

TEST(ReadMounts, CutsLongFieldsAndTakesTheRestForTheNext) {
  const std::string device(1023, 'd'), mountPoint(2047, 'm'), type(255, 't'), options(500, 'o');
  EXPECT_EQ(parsed(device + "1 " + "/a ext4 rw\n"), (Entries{{device, "1", "/a", "ext4"}}));
  EXPECT_EQ(parsed("/dev/sda1 " + mountPoint + "1 ext4 rw\n"),
            (Entries{{"/dev/sda1", mountPoint, "1", "ext4"}}));
  EXPECT_EQ(parsed("/dev/sda1 /a " + type + "1 rw\n"), (Entries{{"/dev/sda1", "/a", type, "1"}}));
  EXPECT_EQ(parsed(device + mountPoint + type + options + "\n"),
            (Entries{{device, mountPoint, type, options}}));
}

TEST(ReadMounts, CutsLongOptions) {
  const std::string options(2047, 'o');
  EXPECT_EQ(parsed("/dev/sda1 /a ext4 " + options + "\n/dev/sda1 /b ext4 " + options +
                   "1 0 0\n/dev/sda1 /c ext4 rw 0 0\n"),
            (Entries{{"/dev/sda1", "/a", "ext4", options},
                     {"/dev/sda1", "/b", "ext4", options},
                     {"/dev/sda1", "/c", "ext4", "rw"}}));
}

TEST(ReadMounts, TakesAnOverLongLineForSeveral) {
  const std::string start = "overlay / overlay ";
  const std::string first = start + std::string(4095 - start.size(), 'o');
  const Entries root = {{"overlay", "/", "overlay", std::string(2047, 'o')}};
  const MountEntry next{"/dev/sda1", "/a", "ext4", "rw"};
  EXPECT_EQ(parsed(first + "ooo 0 0\n/dev/sda1 /a ext4 rw 0 0\n"), (Entries{root[0], next}))
      << "the rest has too few fields";
  EXPECT_EQ(parsed(first + "w /x y z\n/dev/sda1 /a ext4 rw 0 0\n"),
            (Entries{root[0], {"w", "/x", "y", "z"}, next}));
  EXPECT_EQ(parsed(first + "\n/dev/sda1 /a ext4 rw 0 0\n"), (Entries{root[0], next}));
}

TEST(ReadMounts, SeesWhatIsMounted) {
  const test::TempDirectory directory;
  const std::string mountPoint = directory / "My \\ disk\t\xff\n#";
  test::makeDirectory(mountPoint);
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    if (mount("a source", mountPoint.c_str(), "tmpfs", 0, "size=64k") != 0) return "cannot mount";
    const Entries entries = readMounts();
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const MountEntry& entry) {
      return entry.mountPoint == mountPoint;
    });
    if (found == entries.end()) return "is missing";
    if (found->type != "tmpfs") return "is of type " + found->type;
    if (found->device != "a\\040source") return "has the device " + found->device;
    if (!found->options.starts_with("rw,")) return "has the options " + found->options;
    return "";
  });
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

TEST(IsMountPoint, HoldsForThePlaceItselfAlone) {
  const std::vector<MountEntry> mounts = {{"/dev/a", "/", "ext4", "rw"},
                                          {"/dev/b", "/media/A disk", "ext4", "rw"}};
  EXPECT_TRUE(isMountPoint(mounts, "/"));
  EXPECT_TRUE(isMountPoint(mounts, "/media/A disk"));
  EXPECT_FALSE(isMountPoint(mounts, "/media"));
  EXPECT_FALSE(isMountPoint(mounts, "/media/A disk/inside"));
  EXPECT_FALSE(isMountPoint({}, "/"));
}

TEST(IsPseudoFileSystem, HoldsForViewsIntoTheKernel) {
  for (const char* type :
       {"autofs",     "binfmt_misc", "bpf",       "cgroup",   "cgroup2",         "configfs",
        "debugfs",    "devpts",      "devtmpfs",  "efivarfs", "fuse.gvfsd-fuse", "fusectl",
        "hugetlbfs",  "mqueue",      "nsfs",      "proc",     "pstore",          "ramfs",
        "rpc_pipefs", "securityfs",  "selinuxfs", "sysfs",    "tracefs"}) {
    EXPECT_TRUE(isPseudoFileSystem(type)) << type;
  }
}

TEST(IsPseudoFileSystem, DoesNotHoldForWhatHoldsFiles) {
  for (const char* type : {"tmpfs", "overlay", "ext4", "btrfs", "nfs4", "fuse", "fuse.sshfs",
                           "squashfs", "PROC", "Proc", "proc ", "cgroup3", "sys", "fusectl2", ""}) {
    EXPECT_FALSE(isPseudoFileSystem(type)) << type;
  }
}

}  // namespace
}  // namespace sizewalk
