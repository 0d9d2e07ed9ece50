// Does the map keep up with a large tree? Lays out and shades a million small files at 1920 × 1080
// and prints medians in milliseconds, each against the least that the work could cost done plainly:
//
//   shading   the plain scalar loop over the same blocks in the same colours, on one thread;
//   layout    one pass that sums the children of every laid-out folder and sorts what of them is
//   drawn; render    layout, colours, shading and outlines together, into a fresh and into a
//   recycled render.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "app/cushion_kernels.h"
#include "app/cushion_shading.h"
#include "app/parallel.h"
#include "app/treemap_layout.h"
#include "app/treemap_render.h"
#include "bench/support/paired_timing.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/file_tree.h"

namespace {

using app::TreemapBlock;
using sizewalk::FileTree;
using sizewalk::NodeId;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::size_t kPairs = 15;
constexpr app::MeasureSettings kMeasure;

/// A tree made up in memory, the same in every run.
class TreeMaker {
 public:
  TreeMaker(FileTree* tree, double sizeSpread) : tree_(*tree), sizes_(9.0, sizeSpread) {
    tree_.createRoot("/bench");
  }

  /// Adds the contents of one folder; returns its subfolders.
  std::vector<NodeId> fill(NodeId folder, std::size_t files, std::size_t folders) {
    result_.reset(folder);
    for (std::size_t i = 0; i < folders; ++i) {
      result_.subdirectories.push_back(static_cast<std::uint32_t>(i));
      add(sizewalk::kKindFolder, sizewalk::NodeFlag::Directory, 0);
    }
    for (std::size_t i = 0; i < files; ++i) {
      // A few kinds hold most files, as they do on a real disk.
      const auto kind = static_cast<std::uint16_t>(2 + std::min(kinds_(random_), 73));
      add(kind, {}, static_cast<std::uint64_t>(sizes_(random_)) + 1);
    }
    std::vector<NodeId> subfolders;
    tree_.addChildren(result_, &subfolders);
    return subfolders;
  }

  std::size_t uniform(std::size_t from, std::size_t to) {
    return std::uniform_int_distribution<std::size_t>(from, to)(random_);
  }

 private:
  void add(std::uint16_t kind, sizewalk::NodeFlags flags, std::uint64_t size) {
    sizewalk::EntryRecord entry;
    entry.nameOffset = static_cast<std::uint32_t>(result_.names.size());
    entry.nameLength = 1;
    entry.kind = kind;
    entry.flags = flags;
    entry.apparentSize = size;
    entry.allocatedSize = (size + 4095) / 4096 * 4096;
    entry.itemCount = flags.has(sizewalk::NodeFlag::Directory) ? 0 : 1;
    result_.names.push_back('f');
    result_.entries.push_back(entry);
  }

  FileTree& tree_;
  std::mt19937_64 random_{20240229};
  std::lognormal_distribution<double> sizes_;
  std::geometric_distribution<int> kinds_{0.12};
  sizewalk::DirectoryResult result_;
};

/// `files` files: a tenth of them in one folder, the rest three levels down in folders of 1 to
/// `mostInFolder`.
void makeTree(FileTree* tree, std::size_t files, std::size_t mostInFolder, double sizeSpread) {
  TreeMaker maker(tree, sizeSpread);
  const std::vector<NodeId> top = maker.fill(sizewalk::kRootNode, 10, 21);
  maker.fill(top.front(), files / 10, 0);
  std::size_t left = files - files / 10 - 10;
  std::vector<NodeId> middle;
  for (std::size_t i = 1; i < top.size(); ++i) {
    for (const NodeId folder : maker.fill(top[i], 0, maker.uniform(10, 60)))
      middle.push_back(folder);
  }
  for (std::size_t i = 0; left > 0; i = (i + 1) % middle.size()) {
    // Folders are listed once, so the ones in the middle get their subfolders one chain further in.
    const std::size_t count = std::min(left, maker.uniform(1, mostInFolder));
    left -= count;
    middle[i] = maker.fill(middle[i], count, 1).front();
  }
}

double sumOfChildren(const FileTree& tree, NodeId folder, std::vector<app::WeightedItem>* entries) {
  entries->clear();
  double total = 0;
  const sizewalk::NodeRange children = tree.children(folder);
  for (NodeId child = children.first; child < children.last; ++child) {
    const auto weight = static_cast<double>(app::measureValue(tree, child, kMeasure));
    if (weight <= 0) continue;
    total += weight;
    entries->push_back({static_cast<std::int32_t>(child), weight});
  }
  return total;
}

/// The floor under any layout: reads and sums every laid-out folder's children, and sorts those
/// that get a pixel. Returns something that depends on all of it.
double sumAndSort(const FileTree& tree, const std::vector<TreemapBlock>& blocks,
                  std::vector<app::WeightedItem>* entries) {
  double check = 0;
  for (const TreemapBlock& block : blocks) {
    if (block.painted) continue;
    const double total = sumOfChildren(tree, static_cast<NodeId>(block.id), entries);
    const double scale = block.rect.area() / total;
    std::erase_if(*entries, [&](const app::WeightedItem& e) { return scale * e.weight < 1; });
    std::sort(
        entries->begin(), entries->end(),
        [](const app::WeightedItem& a, const app::WeightedItem& b) { return a.weight > b.weight; });
    check += total + (entries->empty() ? 0 : entries->front().weight);
  }
  return check;
}

void report(const char* what, const bench::PairedTiming& timing) {
  std::printf("  %-34s %9.2f ms  against %9.2f ms   %5.2f times as fast\n", what,
              timing.candidateMs, timing.baselineMs, timing.speedup);
}

std::vector<TreemapBlock> layOut(const FileTree& tree) {
  std::vector<TreemapBlock> blocks;
  app::layoutTreemap(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, 0, kMeasure, {}, {},
                     app::kRidgeHeight, &blocks);
  return blocks;
}

void benchLayout(const FileTree& tree) {
  std::vector<TreemapBlock> blocks = layOut(tree);
  const std::vector<TreemapBlock> laidOut = blocks;
  std::vector<app::WeightedItem> entries;
  double check = 0;
  const auto baseline = [&] { check += sumAndSort(tree, laidOut, &entries); };
  report("layout, fresh memory", bench::timePaired(kPairs, baseline, [&] { layOut(tree); }));
  report("layout, recycled memory", bench::timePaired(kPairs, baseline, [&] {
           blocks.clear();
           app::layoutTreemap(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, 0, kMeasure, {},
                              {}, app::kRidgeHeight, &blocks);
         }));
  if (check < 0) std::puts("");  // so that the sums are needed
}

/// Block after block, pixel after pixel.
void shadePlainly(const std::vector<TreemapBlock>& blocks,
                  const std::vector<std::uint32_t>& colours, const app::MapImage& image) {
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (!blocks[i].painted) continue;
    app::shadeBlockWith(app::ShadingKernel::Plain, blocks[i], colours[i],
                        static_cast<std::uint32_t>(i), image);
  }
}

void benchShading(const FileTree& tree, const app::KindColours& colours) {
  const std::vector<TreemapBlock> blocks = layOut(tree);
  std::vector<std::uint32_t> colourOfBlock(blocks.size());
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    colourOfBlock[i] = colours.colourForKind(tree.kind(static_cast<NodeId>(blocks[i].id)));
  }
  std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
  std::vector<std::uint32_t> blockAt(pixels.size());
  const app::MapImage image = {pixels.data(), blockAt.data(), kWidth, kHeight};
  const auto plain = [&] {
    std::fill(pixels.begin(), pixels.end(), app::kMapBackground);
    std::fill(blockAt.begin(), blockAt.end(), app::kNoBlock);
    shadePlainly(blocks, colourOfBlock, image);
  };
  for (unsigned threads = 1; threads <= app::hardwareThreads(); ++threads) {
    const std::string what = "shading, threads: " + std::to_string(threads);
    report(what.c_str(), bench::timePaired(kPairs, plain, [&] {
             app::shadeBlocks(blocks, colourOfBlock, image, threads);
           }));
  }
}

void benchRender(const FileTree& tree, const app::KindColours& colours) {
  app::RenderedTreemap last;
  const auto timing = bench::timePaired(
      kPairs,
      [&] {
        app::renderTreemap(tree, sizewalk::kRootNode, kWidth, kHeight, colours, {}, kMeasure);
      },
      [&] {
        last = app::renderTreemap(tree, sizewalk::kRootNode, kWidth, kHeight, colours, {}, kMeasure,
                                  std::move(last));
      });
  report("render, recycled against fresh", timing);
}

void benchTree(const char* name, std::size_t mostInFolder, double sizeSpread) {
  FileTree tree;
  makeTree(&tree, 1000000, mostInFolder, sizeSpread);
  const std::vector<TreemapBlock> blocks = layOut(tree);
  std::size_t painted = 0;
  for (const TreemapBlock& block : blocks) painted += block.painted ? 1 : 0;
  std::printf("%s: %u nodes, %zu blocks, %zu of them painted\n", name, tree.nodeCount(),
              blocks.size(), painted);
  const app::KindColours colours(true);
  benchLayout(tree);
  benchShading(tree, colours);
  benchRender(tree, colours);
}

}  // namespace

int main() {
  benchTree("files of like size", 400, 0.5);
  benchTree("files of mixed size", 400, 1.5);
  benchTree("many small folders", 12, 1.0);
}
