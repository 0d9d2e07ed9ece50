// Cushions after "Cushion Treemaps: Visualization of Hierarchical Information" (van Wijk and van de
// Wetering, 1999): a block's surface is a sum of parabolas, its gradient therefore linear in the
// pixel's place, and one fixed light turns the gradient into a shade.
//
// `shadePixel` says what a pixel is; the kernel (cushion_kernel.cpp) comes to the same bit for bit,
// on every machine. Threads share the image by bands of rows, never by blocks: neighbouring blocks
// may round onto the same pixel, and then the later one has to win. Each band goes through the
// blocks in their order; blocks that lie together in the list lie together on the map, so a band
// passes over whole runs that do not reach it.
//
// A list of jobs for each band, filled in a first pass, would round no block twice, at the price of
// tens of megabytes of fresh memory for each picture. Bands of a few rows, meant to keep both
// images' rows in the first cache, took up to half as long again: too many runs crossed their
// edges.

#include "app/map/cushion_shading.h"

#include <algorithm>
#include <array>
#include <limits>

#include "app/map/cushion_kernel.h"
#include "app/model/parallel.h"

namespace app {

namespace {

/// Below this many pixels for each, starting a thread costs more than it saves.
constexpr std::int64_t kPixelsPerThread = 131072;
constexpr unsigned kMostThreads = 16;
/// A thread that is held up leaves its share to the others; more bands cut more runs in two.
constexpr unsigned kBandsPerThread = 2;

/// Blocks that follow each other in the list, and what belongs to each of them.
struct BlockRun {
  std::span<const TreemapBlock> blocks;
  std::span<const std::uint32_t> colours;
  /// Of the first block in the whole list.
  std::uint32_t firstIndex = 0;
};

/// Writes a job for each painted block of the run that has pixels in the band, in their order, and
/// returns their number. `jobs` has room for the whole run.
// What has no pixel is dropped without a branch: where blocks are a pixel wide it comes without any
// pattern, and a misprediction costs more than rounding a block's edges.
std::size_t gatherJobs(const BlockRun& run, std::int32_t width, const Band& band, PaintJob* jobs) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < run.blocks.size(); ++i) {
    const TreemapBlock& block = run.blocks[i];
    const PixelBounds bounds = pixelBounds(block.rect, width, band);
    jobs[count] = {bounds, &block.cushion, run.colours[i],
                   run.firstIndex + static_cast<std::uint32_t>(i)};
    count += static_cast<std::size_t>(block.painted & !bounds.empty());
  }
  return count;
}

/// Shades all blocks, band by band of the image: within a band the blocks are painted in their
/// order, so no two threads ever write one pixel and the last block over a pixel wins as it does on
/// one thread.
class MapShader {
 public:
  MapShader(std::span<const TreemapBlock> blocks, std::span<const std::uint32_t> colours,
            std::span<const RunRows> rows, const MapImage& image, unsigned threads)
      : blocks_(blocks),
        colours_(colours),
        rows_(rows),
        image_(image),
        threads_(threads),
        bandCount_(threads == 1 ? 1 : std::min(threads * kBandsPerThread, rowCount())) {}

  void shade() const {
    forEachOnThreads(bandCount_, threads_, [this](std::size_t band) { paint(band); });
  }

 private:
  void paint(std::size_t index) const {
    const Band band = {bandEdge(index), bandEdge(index + 1)};
    const std::size_t rowLength = static_cast<std::size_t>(image_.width);
    const std::size_t from = static_cast<std::size_t>(band.top) * rowLength;
    const std::size_t length = static_cast<std::size_t>(band.bottom - band.top) * rowLength;
    std::fill_n(image_.pixels + from, length, kMapBackground);
    std::fill_n(image_.blockAt + from, length, kNoBlock);
    std::array<PaintJob, kRunLength> jobs;
    for (std::size_t run = 0; run < rows_.size(); ++run) {
      if (pixelEdge(rows_[run].bottom, image_.height) <= band.top) continue;
      if (pixelEdge(rows_[run].top, image_.height) >= band.bottom) continue;
      const std::size_t count = gatherJobs(blocksOf(run), image_.width, band, jobs.data());
      paintJobs(std::span(jobs).first(count), image_);
    }
  }

  BlockRun blocksOf(std::size_t run) const {
    const std::size_t first = run * kRunLength;
    const std::size_t length = std::min(kRunLength, blocks_.size() - first);
    return {blocks_.subspan(first, length), colours_.subspan(first, length),
            static_cast<std::uint32_t>(first)};
  }

  unsigned rowCount() const { return static_cast<unsigned>(image_.height); }
  std::int32_t bandEdge(std::size_t band) const {
    return static_cast<std::int32_t>(std::size_t{rowCount()} * band / bandCount_);
  }

  const std::span<const TreemapBlock> blocks_;
  const std::span<const std::uint32_t> colours_;
  const std::span<const RunRows> rows_;
  const MapImage image_;
  const unsigned threads_;
  const unsigned bandCount_;
};

}  // namespace

void shadeBlock(const TreemapBlock& block, std::uint32_t colour, std::uint32_t blockIndex,
                std::uint32_t* pixels, std::uint32_t* blockAt, std::int32_t width,
                std::int32_t height) {
  const PixelBounds bounds = pixelBounds(block.rect, width, {0, height});
  if (bounds.empty()) return;
  const PaintJob job = {bounds, &block.cushion, colour, blockIndex};
  paintJobs({&job, 1}, {pixels, blockAt, width, height});
}

void findRunRows(std::span<const TreemapBlock> blocks, std::span<RunRows> rows) {
  for (RunRows& run : rows) {
    const std::size_t length = std::min(kRunLength, blocks.size());
    run = {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const TreemapBlock& block : blocks.first(length)) {
      run.top = std::min(run.top, block.rect.y);
      run.bottom = std::max(run.bottom, block.rect.y + block.rect.height);
    }
    blocks = blocks.subspan(length);
  }
}

void shadeBlocks(std::span<const TreemapBlock> blocks, std::span<const std::uint32_t> colours,
                 std::span<const RunRows> rows, const MapImage& image, unsigned threads) {
  const std::int64_t pixels = std::int64_t{image.width} * image.height;
  const auto worthwhile =
      static_cast<unsigned>(std::clamp<std::int64_t>(pixels / kPixelsPerThread, 1, kMostThreads));
  MapShader(blocks, colours, rows, image, std::min(std::max(threads, 1U), worthwhile)).shade();
}

}  // namespace app
