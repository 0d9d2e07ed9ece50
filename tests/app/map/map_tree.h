#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

#include "sizewalk/file_tree.h"

namespace test {

/// An entry to put into a tree: what the map looks at and nothing else.
struct MapEntry {
  sizewalk::KindIndex kind = sizewalk::kKindNoExtension;
  std::uint64_t apparent = 0;
  std::uint64_t allocated = 0;
  std::uint32_t birthTime = 0;
  bool folder = false;
};

/// A file as long as it is large on disk.
MapEntry file(std::uint64_t size, sizewalk::KindIndex kind = sizewalk::kKindNoExtension);
MapEntry folder();

/// Births at or after these count for the measures of `mapTreeOptions`.
inline constexpr std::uint32_t kSixMonthsAgo = 1000;
inline constexpr std::uint32_t kMonthAgo = 2000;
inline constexpr std::uint32_t kLastScan = 3000;

/// Options under which the three added-byte measures differ.
sizewalk::ScanOptions mapTreeOptions();

/// Fills `node`; returns its subfolders.
std::vector<sizewalk::NodeId> fill(sizewalk::FileTree& tree, sizewalk::NodeId node,
                                   const std::vector<MapEntry>& entries);

/// Fills the root of `tree`, which is created first.
std::vector<sizewalk::NodeId> fillRoot(sizewalk::FileTree& tree,
                                       const std::vector<MapEntry>& entries);

/// A tree of about `nodes` nodes with folders of 0 to a few hundred entries, sizes from 0 to
/// terabytes and a few beyond 2^53 whose sum stays below 2^63, all kinds, some subtrees taken out
/// and some folders not read yet.
void fillRandomly(sizewalk::FileTree& tree, std::size_t nodes, std::mt19937_64& random);

}  // namespace test
