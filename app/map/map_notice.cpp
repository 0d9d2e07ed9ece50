#include "app/map/map_notice.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::NodeFlag;
using sizewalk::NodeId;

namespace {

/// The picture is one block, that of the folder in focus.
bool isPlain(const RenderedTreemap& map) {
  if (map.blocks.size() != 1) return false;
  const PictureBlock& block = map.blocks.front();
  const bool nothingInside =
      block.reason == BlockReason::noChildren || block.reason == BlockReason::nothingVisible;
  return nothingInside && block.id == static_cast<std::int32_t>(map.root);
}

/// What the tree has of a folder's contents. They come all at once: where there are any, the folder
/// itself was read.
enum class Contents {
  /// It was not read, or nothing is in it.
  None,
  AllTakenOut,
  Some,
};

Contents contentsOf(const FileTree& tree, NodeId folder) {
  const sizewalk::NodeRange children = tree.children(folder);
  for (NodeId child = children.first; child < children.last; ++child) {
    if (!tree.isTakenOut(child)) return Contents::Some;
  }
  return children.empty() ? Contents::None : Contents::AllTakenOut;
}

std::string_view noticeUnder(Measure measure, bool scannedBefore, bool holdsAnything) {
  switch (measure) {
    case Measure::AddedLastMonth:
      return "Nothing here was added in the last month";
    case Measure::AddedLastSixMonths:
      return "Nothing here was added in the last six months";
    case Measure::AddedSinceLastScan:
      return scannedBefore ? "Nothing here was added since the last scan"
                           : "This folder was not scanned before";
    case Measure::CurrentSize:
      break;
  }
  return holdsAnything ? "Nothing in this folder takes up space" : "This folder is empty";
}

}  // namespace

std::string_view mapNotice(const RenderedTreemap& map, const FileTree& tree,
                           const MeasureSettings& measure, const ScanStatus& status) {
  if (!isPlain(map) || !tree.isVisible(map.root)) return {};
  if (measureValue(tree, map.root, measure) != 0) return {};  // its picture is on the way
  const Contents contents = contentsOf(tree, map.root);
  const bool knownEmpty = contents == Contents::AllTakenOut;
  if (status.scanning && !knownEmpty) return {};
  const sizewalk::NodeFlags flags = tree.flags(map.root);
  if (flags.has(NodeFlag::Unreadable)) return "This folder cannot be read";
  if (flags.has(NodeFlag::MountPoint) && contents == Contents::None) return {};
  const bool sinceLastScan = measure.measure == Measure::AddedSinceLastScan;
  if (sinceLastScan && !status.scannedBefore) return {};
  const bool neverScanned = sinceLastScan && !*status.scannedBefore;
  if (status.stopped && !neverScanned && !knownEmpty) return {};
  return noticeUnder(measure.measure, !neverScanned, contents == Contents::Some);
}

}  // namespace app
