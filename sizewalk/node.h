#pragma once

#include <algorithm>
#include <cstdint>

namespace sizewalk {

/// Index of a node of the file tree. The scanned folder is `kRootNode`.
using NodeId = std::uint32_t;

inline constexpr NodeId kRootNode = 0;

/// Bits of a node's flags.
enum class NodeFlag : std::uint8_t {
  /// A directory.
  Directory = 1,
  /// A symbolic link; never followed.
  Symlink = 2,
  /// A directory on another device than its parent: listed, not entered.
  MountPoint = 4,
  /// A regular file whose (device, inode) was counted before; its sizes and count are zero.
  HardLinkDuplicate = 8,
  /// The entry could not be examined, or the directory could not be opened or listed to its end.
  Unreadable = 16,
  /// Taken out of the tree together with all it holds; its sizes are not in its ancestors.
  Excluded = 32,
};

/// A set of `NodeFlag`s, one byte wide.
class NodeFlags {
 public:
  constexpr NodeFlags() = default;
  constexpr NodeFlags(NodeFlag flag) : bits_(static_cast<std::uint8_t>(flag)) {}
  static constexpr NodeFlags fromBits(std::uint8_t bits) {
    NodeFlags flags;
    flags.bits_ = bits;
    return flags;
  }

  constexpr bool has(NodeFlag flag) const { return (bits_ & static_cast<std::uint8_t>(flag)) != 0; }
  constexpr NodeFlags with(NodeFlag flag) const {
    return fromBits(static_cast<std::uint8_t>(bits_ | static_cast<std::uint8_t>(flag)));
  }
  constexpr NodeFlags without(NodeFlag flag) const {
    return fromBits(static_cast<std::uint8_t>(bits_ & ~static_cast<unsigned>(flag)));
  }
  constexpr std::uint8_t bits() const { return bits_; }
  friend constexpr bool operator==(NodeFlags, NodeFlags) = default;

 private:
  std::uint8_t bits_ = 0;
};

/// A run of node indices, first inclusive, last exclusive.
struct NodeRange {
  NodeId first = 0;
  NodeId last = 0;

  bool empty() const { return first >= last; }
  std::uint32_t size() const { return empty() ? 0 : last - first; }
  friend constexpr bool operator==(const NodeRange&, const NodeRange&) = default;
};

/// What lies below `nodeCount` of the `count` nodes from `first` on; {} when nothing does.
constexpr NodeRange publishedPart(NodeId first, std::uint32_t count, NodeId nodeCount) {
  if (count == 0 || first >= nodeCount) return {};
  return {first, first + std::min(count, nodeCount - first)};
}

}  // namespace sizewalk
