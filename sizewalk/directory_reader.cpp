#include "sizewalk/directory_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "sizewalk/file_kinds.h"
#include "sizewalk/hard_link_set.h"
#include "sizewalk/long_path.h"
#include "sizewalk/retry.h"

namespace sizewalk {

namespace {

base::FileDescriptor openAt(int directory, const char* path, int flags) {
  return base::FileDescriptor(retryInterrupted([&] { return openat(directory, path, flags); }));
}

/// What getdents64 writes: the kernel's linux_dirent64, which no header declares.
struct ListingRecord {
  std::uint64_t inode;
  std::int64_t offset;
  std::uint16_t length;
  std::uint8_t type;
  // then the name, NUL-terminated
};
constexpr std::size_t kNameStart = 19;

constexpr unsigned kStatusMask =
    STATX_TYPE | STATX_NLINK | STATX_CTIME | STATX_INO | STATX_SIZE | STATX_BLOCKS | STATX_BTIME;
constexpr int kStatusFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

std::uint64_t deviceId(const struct statx& status) {
  return (std::uint64_t{status.stx_dev_major} << 32) | status.stx_dev_minor;
}

/// The device of the open directory; 0, which no directory compares with, when it cannot be had.
std::uint64_t directoryDevice(int fd, DirectoryResult* result) {
  struct statx status;
  const int outcome = retryInterrupted(
      [&] { return statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_TYPE, &status); });
  if (outcome != 0) return 0;
  ++result->systemCalls;
  return deviceId(status);
}

/// Lists one directory into one result; lives as long as that takes.
class Listing {
 public:
  Listing(const ReadRules& rules, int fd, DirectoryResult* result)
      : rules_(rules), fd_(fd), result_(result), device_(directoryDevice(fd, result)) {}

  void run(std::span<std::byte> buffer) {
    while (true) {
      const long filled = retryInterrupted(
          [&] { return syscall(SYS_getdents64, fd_, buffer.data(), buffer.size()); });
      if (filled < 0) ++result_->errors;
      if (filled <= 0) return;
      ++result_->systemCalls;
      if (!examineRecords(buffer.first(static_cast<std::size_t>(filled)))) return;
    }
  }

 private:
  bool examineRecords(std::span<const std::byte> records) {
    while (!records.empty()) {
      ListingRecord header;
      std::memcpy(&header, records.data(), kNameStart);
      const char* name = reinterpret_cast<const char*>(records.data()) + kNameStart;
      examine(name);
      if (rules_.stop && rules_.stop->load(std::memory_order_relaxed)) return false;
      records = records.subspan(header.length);
    }
    return true;
  }

  void examine(const char* name) {
    const std::string_view text(name);
    if (text.empty() || text == "." || text == "..") return;
    struct statx status;
    ++result_->systemCalls;
    const int outcome =
        retryInterrupted([&] { return statx(fd_, name, kStatusFlags, kStatusMask, &status); });
    if (outcome != 0) {
      addUnreadable(text);
    } else {
      addExamined(text, status);
    }
  }

  void addUnreadable(std::string_view name) {
    EntryRecord entry;
    entry.flags = NodeFlag::Unreadable;
    entry.itemCount = 1;
    result_->addEntry(name, entry);
    ++result_->errors;
  }

  void addExamined(std::string_view name, const struct statx& status) {
    EntryRecord entry;
    entry.birthTime = birthOrChangeTime(status);
    entry.itemCount = 1;
    switch (status.stx_mode & S_IFMT) {
      case S_IFREG:
        fillFile(name, status, &entry);
        break;
      case S_IFDIR:
        fillDirectory(status, &entry);
        break;
      case S_IFLNK:
        entry.kind = kKindSymbolicLink;
        entry.flags = NodeFlag::Symlink;
        fillSizes(status, &entry);
        break;
      default:
        break;  // pipes, sockets, devices: an item of kind 0 without sizes
    }
    result_->addEntry(name, entry);
  }

  void fillFile(std::string_view name, const struct statx& status, EntryRecord* entry) const {
    entry->kind = classifyName(name);
    fillSizes(status, entry);
    if (rules_.dedupeHardLinks && status.stx_nlink >= 2) {
      entry->hardLinkKey = hardLinkKey(deviceId(status), status.stx_ino);
    }
  }

  void fillDirectory(const struct statx& status, EntryRecord* entry) {
    entry->kind = kKindFolder;
    entry->flags = NodeFlag::Directory;
    entry->itemCount = 0;
    if (isMountPoint(status)) {
      entry->flags = entry->flags.with(NodeFlag::MountPoint);
    } else {
      result_->subdirectories.push_back(static_cast<std::uint32_t>(result_->entries.size()));
    }
  }

  /// Another device, or, where the kernel tells (5.8), any root of a mount: a bind mount has the
  /// device of the tree around it, and entering it would count the same bytes twice.
  bool isMountPoint(const struct statx& status) const {
    if (device_ == 0) return false;
    return device_ != deviceId(status) ||
           (status.stx_attributes & status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
  }

  static void fillSizes(const struct statx& status, EntryRecord* entry) {
    entry->apparentSize = status.stx_size;
    entry->allocatedSize = status.stx_blocks * 512;
  }

  const ReadRules& rules_;
  int fd_;
  DirectoryResult* result_;
  std::uint64_t device_;
};

}  // namespace

base::FileDescriptor openDirectory(const std::string& path) {
  const std::optional<ReachedPath> reached = reachPath(path);
  if (!reached) return {};
  return openAt(reached->directory(), reached->rest.c_str(), kListingFlags);
}

std::uint32_t birthOrChangeTime(const struct statx& status) {
  const std::int64_t seconds =
      status.stx_mask & STATX_BTIME ? status.stx_btime.tv_sec : status.stx_ctime.tv_sec;
  if (seconds < 0 || seconds > std::numeric_limits<std::uint32_t>::max()) return 0;
  return static_cast<std::uint32_t>(seconds);
}

void readDirectory(const ReadRules& rules, int fd, DirectoryResult* result,
                   std::span<std::byte> buffer) {
  Listing(rules, fd, result).run(buffer);
}

}  // namespace sizewalk
