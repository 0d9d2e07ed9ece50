#pragma once

#include <cstdint>
#include <string>

namespace sizewalk {

/// How many reader threads suit the storage below a folder. All of it reads sysfs only, never the
/// device, and every failure falls through to the answer for storage without moving parts. Any
/// thread.

/// Reader threads for a scan of `rootPath`; 2 or more.
std::int32_t probeReaderThreads(const std::string& rootPath);

/// The resolved sysfs directory of the block device that holds `rootPath`, of a partition rather
/// than of its disk. Empty when the path does not exist or no block device is behind it (pseudo and
/// network file systems).
std::string sysfsDevicePath(const std::string& rootPath);

/// The decision behind `probeReaderThreads`: reader threads for the device at `devicePath`, as
/// `sysfsDevicePath` gives it, on a machine with `processors` processors. An unknown number, 0,
/// gets the answers of four.
std::int32_t readerThreadsForDevice(const std::string& devicePath, std::uint32_t processors);

}  // namespace sizewalk
