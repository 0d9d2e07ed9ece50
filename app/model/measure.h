#pragma once

#include <cstdint>

#include "sizewalk/file_tree.h"

namespace app {

/// What the views measure an item by. The commands that show a measure are in the same order.
enum class Measure : int {
  CurrentSize = 0,
  AddedLastMonth = 1,
  AddedLastSixMonths = 2,
  AddedSinceLastScan = 3,
};

struct MeasureSettings {
  Measure measure = Measure::CurrentSize;
  /// The current size is what the item takes on disk instead of its length. The added-byte measures
  /// count allocated bytes either way.
  bool physicalSize = false;
  friend bool operator==(const MeasureSettings&, const MeasureSettings&) = default;
};

/// Bytes of `node` under the measure; 0 for a node that has been taken out of the tree, so that no
/// view shows it or picks it. A sum from 2^63 on comes out negative and is shown by no view either,
/// and one from 2^64 on has wrapped to what is left: a few sparse files are enough, each may claim
/// 2^63 - 1 bytes. The sums do not stop at their largest value instead, because taking a subtree
/// out subtracts it and has to leave exactly the rest. Any thread; on a tree that is being written
/// two calls may differ.
inline std::int64_t measureValue(const sizewalk::FileTree& tree, sizewalk::NodeId node,
                                 const MeasureSettings& settings) {
  if (tree.isTakenOut(node)) return 0;
  switch (settings.measure) {
    case Measure::AddedLastMonth:
      return static_cast<std::int64_t>(tree.addedLastMonth(node));
    case Measure::AddedLastSixMonths:
      return static_cast<std::int64_t>(tree.addedLastSixMonths(node));
    case Measure::AddedSinceLastScan:
      return static_cast<std::int64_t>(tree.addedSinceLastScan(node));
    case Measure::CurrentSize:
      break;
  }
  return static_cast<std::int64_t>(settings.physicalSize ? tree.allocatedSize(node)
                                                         : tree.apparentSize(node));
}

}  // namespace app
