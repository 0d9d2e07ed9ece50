// Cushions after "Cushion Treemaps: Visualization of Hierarchical Information" (van Wijk and van de
// Wetering, 1999): a block's surface is a sum of parabolas, its gradient therefore linear in the
// pixel's place, and one fixed light turns the gradient into a shade.
//
// `shadePixel` says what a pixel is; the kernel (cushion_kernel.cpp) comes to the same bit for bit,
// on every machine. Threads share the image by bands of rows, not by blocks: neighbouring blocks
// may round onto the same pixel, and then the later one has to win. (Those of which it is known
// that they do not are painted before, by whoever laid them out.) Each band goes through the
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

/// Blocks that a band takes or passes over together, and what belongs to each of them.
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

/// How many threads pay for themselves.
unsigned worthwhileThreads(const MapImage& image, unsigned threads) {
  const std::int64_t pixels = std::int64_t{image.width} * image.height;
  const auto worthwhile =
      static_cast<unsigned>(std::clamp<std::int64_t>(pixels / kPixelsPerThread, 1, kMostThreads));
  return std::min(std::max(threads, 1U), worthwhile);
}

Band rowsOf(const RunRows& run, const MapImage& image) {
  return {pixelEdge(run.top, image.height), pixelEdge(run.bottom, image.height)};
}

BlockRun runOf(const BlockSequence& sequence, std::size_t run) {
  const std::size_t first = run * kRunLength;
  const std::size_t length = std::min(kRunLength, sequence.blocks.size() - first);
  return {sequence.blocks.subspan(first, length), sequence.colours.subspan(first, length),
          sequence.firstIndex + static_cast<std::uint32_t>(first)};
}

}  // namespace

BandShader::BandShader(std::span<const BlockSequence> sequences, const MapImage& image,
                       unsigned threads)
    : sequences_(sequences), image_(image) {
  findReach();
  const unsigned workers = worthwhileThreads(image, threads);
  bands_ = std::min(workers == 1 ? 1 : workers * kBandsPerThread,
                    static_cast<unsigned>(std::max(bottom_ - top_, 0)));
}

/// The rows that any block is painted on.
void BandShader::findReach() {
  top_ = image_.height;
  for (const BlockSequence& sequence : sequences_) {
    for (const RunRows& run : sequence.rows) {
      const Band rows = rowsOf(run, image_);
      top_ = std::min(top_, rows.top);
      bottom_ = std::max(bottom_, rows.bottom);
    }
  }
}

std::int32_t BandShader::edge(std::size_t band) const {
  const auto rows = static_cast<std::size_t>(bottom_ - top_);
  return top_ + static_cast<std::int32_t>(rows * band / bands_);
}

void BandShader::paint(std::size_t index, const std::stop_token& stop) const {
  const Band band = {edge(index), edge(index + 1)};
  std::array<PaintJob, kRunLength> jobs;
  for (const BlockSequence& sequence : sequences_) {
    endWhereGivenUp(stop);
    for (std::size_t run = 0; run < sequence.rows.size(); ++run) {
      const Band rows = rowsOf(sequence.rows[run], image_);
      if (rows.bottom <= band.top || rows.top >= band.bottom) continue;
      const std::size_t count = gatherJobs(runOf(sequence, run), image_.width, band, jobs.data());
      paintJobs(std::span(jobs).first(count), image_);
    }
  }
}

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

void clearImage(const MapImage& image, unsigned threads, const std::stop_token& stop) {
  const std::size_t count = worthwhileThreads(image, threads);
  const std::size_t pixels =
      static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
  const auto clear = [&](std::size_t share) {
    const std::size_t from = pixels * share / count;
    const std::size_t length = pixels * (share + 1) / count - from;
    std::fill_n(image.pixels + from, length, kMapBackground);
    std::fill_n(image.blockAt + from, length, kNoBlock);
  };
  forEachOnThreads(count, threads, clear, stop);
}

void shadeBlocks(std::span<const BlockSequence> sequences, const MapImage& image, unsigned threads,
                 const std::stop_token& stop) {
  const BandShader shader(sequences, image, threads);
  const auto paint = [&](std::size_t band) { shader.paint(band, stop); };
  forEachOnThreads(shader.bands(), threads, paint, stop);
}

}  // namespace app
