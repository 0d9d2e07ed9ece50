#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace app {

/// What tells one file or folder from any other that lies, or comes to lie, at the same path.
struct ItemIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  friend bool operator==(const ItemIdentity&, const ItemIdentity&) = default;
};

/// Of what lies at the absolute `path` itself, a symbolic link included; paths may be longer than
/// PATH_MAX. Nothing when it cannot be asked, and errno says why. One question to the disk, which
/// may be a slow one.
std::optional<ItemIdentity> identify(const std::string& path);

/// The same of what `path` leads to when it is a symbolic link.
std::optional<ItemIdentity> identifyTarget(const std::string& path);

}  // namespace app
