// A later block wins the pixels that it has in common with an earlier one, so that bands of the
// image, each painted in order, need all blocks as they are laid out: 80 bytes each, until the last
// one is there. But the blocks of a layout lie side by side: they have a pixel in common only where
// the edge between them falls on its centre and they round it differently. Blocks without such an
// edge can be painted at once and in any order. The others, three in a hundred unless sizes are
// made for it, are copied and painted last, in bands.

#include "app/map/early_shading.h"

#include <cmath>

namespace app {

namespace {

/// Edges that lie together in exact arithmetic differ by less: a coordinate of up to 2^16 is the
/// sum of up to a million others in each of 64 levels at the most, rounded to 2^-37 each time.
/// The sums of sizes that they depend on are rounded, too, where sizes are beyond 2^53, but
/// relative to the folder that is divided: by no more than that.
constexpr double kEdgeTolerance = 1.0 / 256;

bool isAtCentre(double edge) {
  // As in `pixelEdge`: only values for which a conversion is defined.
  const double within = edge > 0 ? (edge < kMostPixels ? edge : kMostPixels) : 0;
  const double fraction = within - static_cast<double>(static_cast<std::int32_t>(within));
  return std::abs(fraction - 0.5) < kEdgeTolerance;
}

}  // namespace

bool maySharePixels(const MapRect& rect) {
  return isAtCentre(rect.x) || isAtCentre(rect.x + rect.width) || isAtCentre(rect.y) ||
         isAtCentre(rect.y + rect.height);
}

void EarlyShader::add(const TreemapBlock& block, const PixelSpan& span, std::uint32_t colour,
                      std::uint32_t index) {
  if (maySharePixels(block.rect)) return late_.add(block, colour, index);
  const PixelBounds bounds = {span.left, span.right, span.top, span.bottom};
  if (bounds.empty()) return;
  jobs_[jobCount_++] = {bounds, &block.cushion, colour, index};
  if (jobCount_ == jobs_.size()) flush();
}

void EarlyShader::flush() {
  paintJobs(std::span(jobs_).first(jobCount_), image_);
  jobCount_ = 0;
}

void LateBlocks::add(const TreemapBlock& block, std::uint32_t colour, std::uint32_t index) {
  const bool follows =
      !runs_.empty() && runs_.back().firstIndex + (blocks_.size() - runs_.back().first) == index;
  if (!follows) runs_.push_back({blocks_.size(), index});
  blocks_.push_back(block);
  colours_.push_back(colour);
}

std::size_t LateBlocks::lengthOf(std::size_t run) const {
  const std::size_t end = run + 1 < runs_.size() ? runs_[run + 1].first : blocks_.size();
  return end - runs_[run].first;
}

void LateBlocks::addSequences(std::vector<BlockSequence>* sequences) {
  std::size_t rowCount = 0;
  for (std::size_t run = 0; run < runs_.size(); ++run) rowCount += runCount(lengthOf(run));
  rows_.resize(rowCount);
  std::span<RunRows> rows(rows_);
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    const std::size_t length = lengthOf(run);
    const std::span blocks = std::span(blocks_).subspan(runs_[run].first, length);
    const std::span own = rows.first(runCount(length));
    rows = rows.subspan(own.size());
    findRunRows(blocks, own);
    sequences->push_back({blocks, std::span(colours_).subspan(runs_[run].first, length), own,
                          runs_[run].firstIndex});
  }
}

}  // namespace app
