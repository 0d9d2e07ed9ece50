#include "sizewalk/mount_table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>

namespace sizewalk {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

bool isOctalDigit(char c) { return c >= '0' && c <= '7'; }

/// The table writes white space and backslashes of a name as a backslash and three octal digits.
/// Only the first digit is looked at before the three are taken; the value is cut to a byte.
std::string decodeEscapes(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 3 >= text.size() || !isOctalDigit(text[i + 1])) {
      decoded += text[i];
      continue;
    }
    const int value = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
    decoded += static_cast<char>(value);
    i += 3;
  }
  return decoded;
}

std::optional<MountEntry> parseLine(const char* line) {
  std::array<char, 1024> device;
  std::array<char, 2048> mountPoint;
  std::array<char, 256> type;
  std::array<char, 2048> options;
  const int fields = std::sscanf(line, "%1023s %2047s %255s %2047s", device.data(),
                                 mountPoint.data(), type.data(), options.data());
  if (fields != 4) return std::nullopt;
  return MountEntry{device.data(), decodeEscapes(mountPoint.data()), type.data(), options.data()};
}

}  // namespace

std::vector<MountEntry> readMounts(const std::string& tablePath) {
  std::vector<MountEntry> mounts;
  const std::unique_ptr<std::FILE, CloseFile> table(std::fopen(tablePath.c_str(), "re"));
  if (!table) return mounts;
  std::array<char, 4096> line;
  while (std::fgets(line.data(), static_cast<int>(line.size()), table.get())) {
    if (std::optional<MountEntry> entry = parseLine(line.data())) {
      mounts.push_back(*std::move(entry));
    }
  }
  return mounts;
}

bool isMountPoint(const std::vector<MountEntry>& mounts, std::string_view path) {
  return std::ranges::find(mounts, path, &MountEntry::mountPoint) != mounts.end();
}

bool isPseudoFileSystem(std::string_view type) {
  static const std::unordered_set<std::string_view> kTypes = {
      "autofs",     "binfmt_misc", "bpf",       "cgroup",   "cgroup2",         "configfs",
      "debugfs",    "devpts",      "devtmpfs",  "efivarfs", "fuse.gvfsd-fuse", "fusectl",
      "hugetlbfs",  "mqueue",      "nsfs",      "proc",     "pstore",          "ramfs",
      "rpc_pipefs", "securityfs",  "selinuxfs", "sysfs",    "tracefs"};
  return kTypes.contains(type);
}

}  // namespace sizewalk
