#include "sizewalk/storage_probe.h"

#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <thread>

#include "base/files.h"

namespace sizewalk {

namespace {

/// Words of hypervisors in a disk's vendor or model text, lower case.
constexpr std::string_view kVirtualWords[] = {"msft", "vmware",  "qemu",   "virtual",
                                              "vbox", "innotek", "google", "amazon"};
/// Parts of the sysfs paths of disks that a hypervisor presents through a driver of its own.
constexpr std::string_view kVirtualPaths[] = {"/virtio", "/vbd", "/xen"};

template <typename Words>
bool containsAny(std::string_view text, const Words& words) {
  return std::any_of(std::begin(words), std::end(words), [text](std::string_view word) {
    return text.find(word) != std::string_view::npos;
  });
}

/// The text of a sysfs attribute without its line end; empty when there is none.
std::string readAttribute(const std::string& path) {
  std::string text = base::readWholeFile(path).value_or(std::string());
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

// Case is disregarded: the kernel shows what the device answers, and that is "VMware", "QEMU" or
// "Msft".
std::string toLowerAscii(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return text;
}

bool isVirtual(const std::string& devicePath) {
  if (containsAny(devicePath, kVirtualPaths)) return true;
  // A partition's directory lies in its disk's, and only the disk's has the device.
  for (const char* attribute :
       {"/device/vendor", "/device/model", "/../device/vendor", "/../device/model"}) {
    if (containsAny(toLowerAscii(readAttribute(devicePath + attribute)), kVirtualWords))
      return true;
  }
  return false;
}

bool isRotational(const std::string& devicePath) {
  std::string flag = readAttribute(devicePath + "/queue/rotational");
  // A partition has no queue of its own.
  if (flag.empty()) flag = readAttribute(devicePath + "/../queue/rotational");
  return flag == "1";
}

/// More readers than processors: listings wait for the storage, which answers many requests at a
/// time.
std::uint32_t parallelStorageThreads(std::uint32_t processors) {
  return std::clamp<std::uint32_t>(processors, 8, 32);
}

/// Few readers: each one more makes the disk's head travel.
std::uint32_t spinningDiskThreads(std::uint32_t processors) {
  return processors <= 3 ? 2 : std::min<std::uint32_t>(processors / 2, 4);
}

}  // namespace

std::string sysfsDevicePath(const std::string& rootPath) {
  struct stat status {};
  if (::stat(rootPath.c_str(), &status) != 0) return {};
  std::array<char, 64> link;
  std::snprintf(link.data(), link.size(), "/sys/dev/block/%u:%u", major(status.st_dev),
                minor(status.st_dev));
  std::array<char, PATH_MAX> resolved;
  return ::realpath(link.data(), resolved.data()) ? resolved.data() : std::string();
}

std::int32_t readerThreadsForDevice(const std::string& devicePath, std::uint32_t processors) {
  const bool spins = !devicePath.empty() && !isVirtual(devicePath) && isRotational(devicePath);
  return static_cast<std::int32_t>(spins ? spinningDiskThreads(processors)
                                         : parallelStorageThreads(processors));
}

std::int32_t probeReaderThreads(const std::string& rootPath) {
  return readerThreadsForDevice(sysfsDevicePath(rootPath), std::thread::hardware_concurrency());
}

}  // namespace sizewalk
