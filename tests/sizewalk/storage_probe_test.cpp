#include "sizewalk/storage_probe.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

/// A directory that looks like a disk's in sysfs, with one partition in it.
class FakeDisk {
 public:
  FakeDisk() { test::makeDirectory(partition()); }
  std::string disk() const { return directory_ / "block/sda"; }
  std::string partition() const { return disk() + "/sda1"; }
  void setAttribute(const std::string& name, const std::string& text) const {
    test::writeFile(disk() + "/" + name, text);
  }

 private:
  test::TempDirectory directory_;
};

class SpinningDisk : public FakeDisk {
 public:
  SpinningDisk() {
    setAttribute("queue/rotational", "1\n");
    setAttribute("device/vendor", "ATA     \n");
    setAttribute("device/model", "ST2000DM008-2FR1\n");
  }
};

TEST(ReaderThreadsForDevice, AreFewOnASpinningDisk) {
  const SpinningDisk fake;
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 1), 2);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 2);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 3), 2);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 4), 2);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 7), 3);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 8), 4);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 16), 4);
}

TEST(ReaderThreadsForDevice, AskTheDiskOfAPartition) {
  const SpinningDisk fake;
  EXPECT_EQ(readerThreadsForDevice(fake.partition(), 2), 2);
  EXPECT_EQ(readerThreadsForDevice(fake.partition(), 16), 4);
}

TEST(ReaderThreadsForDevice, PreferTheQueueOfTheDeviceItself) {
  const SpinningDisk fake;
  test::writeFile(fake.partition() + "/queue/rotational", "0\n");
  EXPECT_EQ(readerThreadsForDevice(fake.partition(), 2), 8);
}

TEST(ReaderThreadsForDevice, AreManyOnASolidStateDisk) {
  const FakeDisk fake;
  fake.setAttribute("queue/rotational", "0\n");
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 4), 8);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 12), 12);
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 64), 32);
}

TEST(ReaderThreadsForDevice, AreManyWithoutABlockDevice) {
  EXPECT_EQ(readerThreadsForDevice("", 2), 8);
  EXPECT_EQ(readerThreadsForDevice("", 20), 20);
  EXPECT_EQ(readerThreadsForDevice("", 64), 32);
}

TEST(ReaderThreadsForDevice, AreManyWhereSysfsTellsNothing) {
  const FakeDisk fake;
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 8);
  EXPECT_EQ(readerThreadsForDevice(fake.disk() + "/missing", 2), 8);
}

TEST(ReaderThreadsForDevice, TakeNothingButAOneForSpinning) {
  const FakeDisk fake;
  for (const char* text : {"11\n", " 1\n", "1 \n", "1\n\n", "yes\n", "\xff\n"}) {
    fake.setAttribute("queue/rotational", text);
    EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 8) << text;
  }
  fake.setAttribute("queue/rotational", "1");
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 2);
}

TEST(ReaderThreadsForDevice, AreThoseOfFourProcessorsWhenNoneAreReported) {
  const SpinningDisk fake;
  EXPECT_EQ(readerThreadsForDevice(fake.disk(), 0), readerThreadsForDevice(fake.disk(), 4));
  EXPECT_EQ(readerThreadsForDevice("", 0), readerThreadsForDevice("", 4));
}

TEST(ReaderThreadsForDevice, TakeADiskOfAHypervisorForSolidState) {
  for (const char* model :
       {"Msft Virtual Disk", "VMware Virtual S", "QEMU HARDDISK", "Virtual Disk", "VBOX HARDDISK",
        "innotek drive", "PersistentDisk google", "Amazon Elastic B"}) {
    const SpinningDisk fake;
    fake.setAttribute("device/model", std::string(model) + "\n");
    EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 8) << model;
    EXPECT_EQ(readerThreadsForDevice(fake.partition(), 2), 8) << model;
  }
}

TEST(ReaderThreadsForDevice, TakeADiskOfAHypervisorsVendorForSolidState) {
  for (const char* vendor : {"Msft", "VMware", "QEMU", "vbox", "Google", "amazon"}) {
    const SpinningDisk fake;
    fake.setAttribute("device/vendor", std::string(vendor) + "    \n");
    EXPECT_EQ(readerThreadsForDevice(fake.disk(), 2), 8) << vendor;
    EXPECT_EQ(readerThreadsForDevice(fake.partition(), 2), 8) << vendor;
  }
}

TEST(ReaderThreadsForDevice, TakeAParavirtualPathForSolidState) {
  const test::TempDirectory directory;
  for (const char* path : {"virtio1/block/vda", "vbd-51712/block/xvda", "xen/block/xvda"}) {
    const std::string device = directory / path;
    test::writeFile(device + "/queue/rotational", "1\n");
    EXPECT_EQ(readerThreadsForDevice(device, 2), 8) << path;
  }
  const std::string plain = directory / "my-virtio/block/sda";
  test::writeFile(plain + "/queue/rotational", "1\n");
  EXPECT_EQ(readerThreadsForDevice(plain, 2), 2);
}

TEST(SysfsDevicePath, IsEmptyWithoutABlockDevice) {
  EXPECT_EQ(sysfsDevicePath("/proc"), "");
  EXPECT_EQ(sysfsDevicePath("/nonexistent-path"), "");
  EXPECT_EQ(sysfsDevicePath(""), "");
}

/// A mount point with a block device behind it, or the empty string.
std::string mountedBlockDevice() {
  std::ifstream mounts("/proc/self/mounts");
  std::string source, target, rest;
  while (mounts >> source >> target && std::getline(mounts, rest)) {
    struct stat status {};
    if (source.starts_with("/dev/") && stat(target.c_str(), &status) == 0 &&
        std::filesystem::exists("/sys/dev/block/" + std::to_string(major(status.st_dev)) + ":" +
                                std::to_string(minor(status.st_dev)))) {
      return target;
    }
  }
  return {};
}

TEST(SysfsDevicePath, IsTheDirectoryOfTheMountedDevice) {
  const std::string mountPoint = mountedBlockDevice();
  if (mountPoint.empty()) GTEST_SKIP() << "no block device is mounted here";
  struct stat status {};
  ASSERT_EQ(stat(mountPoint.c_str(), &status), 0);
  const std::string path = sysfsDevicePath(mountPoint);
  EXPECT_TRUE(path.starts_with("/sys/devices/")) << path;
  EXPECT_EQ(test::readFile(path + "/dev"), std::to_string(major(status.st_dev)) + ":" +
                                               std::to_string(minor(status.st_dev)) + "\n");
}

TEST(ProbeReaderThreads, AnswersForEveryPath) {
  EXPECT_GE(probeReaderThreads("/proc"), 8);
  EXPECT_LE(probeReaderThreads("/proc"), 32);
  EXPECT_GE(probeReaderThreads("/nonexistent-path"), 8);
  EXPECT_GE(probeReaderThreads("/"), 2);
}

}  // namespace
}  // namespace sizewalk
