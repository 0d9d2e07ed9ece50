#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// A rectangle of the map in fractional pixels, origin top left.
struct MapRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double area() const { return width * height; }
  friend bool operator==(const MapRect&, const MapRect&) = default;
};

/// The cushion over a block: the surface z = qx·x² + lx·x + qy·y² + ly·y, of which only the
/// gradient is lit.
struct CushionCoefficients {
  double quadraticX = 0;
  double quadraticY = 0;
  double linearX = 0;
  double linearY = 0;
  friend bool operator==(const CushionCoefficients&, const CushionCoefficients&) = default;
};

/// Something beside the tree that takes part in the layout of the focused folder: the volume's free
/// space, or what other folders of the volume take.
struct ExtraBlock {
  /// Negative, and not `kRestMarker`.
  std::int32_t id = 0;
  std::string label;
  /// Bytes; a block of 0 or less is ignored.
  std::int64_t size = 0;
  /// 0xRRGGBB.
  std::uint32_t colour = 0;
  friend bool operator==(const ExtraBlock&, const ExtraBlock&) = default;
};

inline constexpr std::int32_t kFreeSpaceBlock = -2;
inline constexpr std::int32_t kOtherSpaceBlock = -3;

/// Why a block came to be what it is.
enum class BlockReason : std::uint8_t {
  /// Placed by its folder: a file, an extra block, or a folder (unpainted) whose contents follow.
  laidOut = 0,
  /// A folder with no children, or with none published yet.
  noChildren = 1,
  /// Nested as deep as the map goes.
  depthLimit = 2,
  /// Narrower or lower than a pixel, or under 9 square pixels.
  tooSmall = 3,
  /// A folder in which nothing has a size.
  nothingVisible = 4,
  /// The entries of a folder that are smaller than a pixel, merged.
  rest = 5,
};

/// One rectangle of the map.
struct TreemapBlock {
  MapRect rect;
  /// Node index, or the negative id of an extra block. A rest block carries the index of the first
  /// node merged into it, or the last merged extra block's id where no node was.
  std::int32_t id = 0;
  /// The focused folder is at depth 0, its children at 1.
  std::int32_t depth = 0;
  /// Entries merged into a rest block; 0 for every other block.
  std::int32_t restCount = 0;
  /// False for a folder whose contents were laid out: it is there to be outlined, never drawn nor
  /// hit.
  bool painted = true;
  BlockReason reason = BlockReason::laidOut;
  CushionCoefficients cushion;
  friend bool operator==(const TreemapBlock&, const TreemapBlock&) = default;
};

/// What the entries merged into one rest block add up to.
struct RestSum {
  /// The rest block's id, which no other rest block has.
  std::int32_t id = 0;
  /// Bytes under the measure; of an even larger sum the most there is.
  std::int64_t size = 0;
};

/// A folder at this depth is drawn as one block.
inline constexpr std::int32_t kDepthLimit = 64;
/// Height of the cushions' ridges at the focused folder, and what is left of it one level further
/// in.
inline constexpr double kRidgeHeight = 0.38;
inline constexpr double kRidgeDecay = 0.91;
/// Stands for a folder's rest block among the items to be placed.
inline constexpr std::int32_t kRestMarker = std::numeric_limits<std::int32_t>::min();

/// Lays out what is inside `node` within `rect` and appends the blocks to `out`: first the folder's
/// own unpainted block, then its entries in the order in which they were placed, each folder
/// followed by its contents. A folder that cannot be subdivided yields one painted block that says
/// why.
///
/// `depth` is the nesting depth of `node`, 0 for the focused folder, which alone takes in the extra
/// blocks and has no ridge of its own. `cushion` are the coefficients of the folder around it,
/// `height` the ridge height at this level. `node` must be published.
///
/// Where `rests` is given, the sum of each rest block is appended to it, in the blocks' order.
///
/// The tree may grow while this runs: each folder's children are read once and laid out from what
/// was read, so every folder is consistent in itself. Any thread.
void layoutTreemap(const sizewalk::FileTree& tree, sizewalk::NodeId node, const MapRect& rect,
                   std::int32_t depth, const MeasureSettings& measure,
                   std::span<const ExtraBlock> extraBlocks, const CushionCoefficients& cushion,
                   double height, std::vector<TreemapBlock>* out,
                   std::vector<RestSum>* rests = nullptr);

/// A folder that is laid out by itself, as `layoutTreemap` takes it.
struct SubtreeLayout {
  sizewalk::NodeId node = 0;
  MapRect rect;
  std::int32_t depth = 0;
  CushionCoefficients cushion;
  double height = 0;
};

/// A layout in parts, so that several threads share it: the blocks of all parts, one after the
/// other, are those of `layoutTreemap`, in the same order, and so are the sums of rest blocks.
///
/// What is above the parts, few folders of many, is laid out at once. A folder that holds most of
/// its files itself is never divided.
class LayoutParts {
 public:
  /// The focused folder, with what `layoutTreemap` takes. Tree, measure and extra blocks outlive
  /// it. `mostInPart`: about how many blocks a part has, where folders allow it.
  LayoutParts(const sizewalk::FileTree& tree, sizewalk::NodeId focus, const MapRect& rect,
              const MeasureSettings& measure, std::span<const ExtraBlock> extraBlocks,
              std::size_t mostInPart);

  /// At least 1.
  std::size_t count() const { return parts_.size(); }
  /// About how many blocks a part has: enough to share work out and to reserve memory.
  std::size_t blocksIn(std::size_t part) const { return parts_[part].blocks; }
  /// Appends the blocks of a part, and its rest blocks' sums. Any thread; parts share nothing.
  void layOut(std::size_t part, std::vector<TreemapBlock>* out, std::vector<RestSum>* rests) const;

 private:
  /// A subtree, and how much was laid out above the parts when its turn came.
  struct Deferred {
    SubtreeLayout subtree;
    std::size_t blocks = 0;
    std::size_t blocksBefore = 0;
    std::size_t restsBefore = 0;
  };
  /// Neighbouring subtrees with what lies above and between them.
  struct Part {
    std::size_t lastSubtree = 0;
    std::size_t lastBlock = 0;
    std::size_t lastRest = 0;
    std::size_t blocks = 0;
  };

  bool isPart(const SubtreeLayout& subtree, std::size_t* blocks) const;
  void join();

  const sizewalk::FileTree& tree_;
  const MeasureSettings& measure_;
  const std::span<const ExtraBlock> extraBlocks_;
  const std::size_t mostInPart_;
  std::vector<TreemapBlock> above_;
  std::vector<RestSum> restsAbove_;
  std::vector<Deferred> deferred_;
  std::vector<Part> parts_;
};

/// An item for `squarify`; weights are greater than 0.
struct WeightedItem {
  std::int32_t id = 0;
  double weight = 0;
};

struct PlacedItem {
  std::int32_t id = 0;
  MapRect rect;
  friend bool operator==(const PlacedItem&, const PlacedItem&) = default;
};

enum class Presorted { No, Yes };

/// Divides `rect` among `items` by weight, in rows whose worst aspect ratio is as good as it gets,
/// and appends the results in the items' order; unless they are presorted, that is largest first.
/// Items for which rounding leaves no room are dropped from the end.
void squarify(std::span<const WeightedItem> items, const MapRect& rect, Presorted presorted,
              std::vector<PlacedItem>* out);

/// Adds a parabolic ridge over `rect` to the coefficients, as high as `height`; none over an empty
/// `rect`.
void addRidge(const MapRect& rect, double height, CushionCoefficients* cushion);

}  // namespace app
