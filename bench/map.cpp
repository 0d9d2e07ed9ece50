// Does the map keep up with a large tree? Lays out and shades a million small files at 1920 × 1080,
// each step against the least that it could cost done plainly:
//
//   layout    one pass that sums the children of every laid-out folder and sorts what of them is
//             drawn;
//   shading   the plain scalar loop over the same blocks in the same colours, on one thread, with
//             nothing called for a pixel, and the same picture in the end;
//   parts     the layout in parts on all processors, against the same in one;
//   render    layout, colours, shading and outlines together, in the memory of the last render as
//             the view does it, against fresh memory;
//   growth    layout, and layout with all that follows, for each entry of trees of one shape, and
//             of one folder, against the smallest of them.

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/map/cushion_shading.h"
#include "app/map/treemap_layout.h"
#include "app/map/treemap_render.h"
#include "app/model/parallel.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/plain_shading.h"
#include "bench/support/row.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/file_tree.h"
#include "sizewalk/tree_scanner.h"

namespace {

using app::TreemapBlock;
using sizewalk::FileTree;
using sizewalk::NodeId;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::size_t kPairs = 15;
constexpr const char* kLayoutBar = "at most 2.00";
constexpr const char* kShadingBar = "at most 0.33";
constexpr const char* kPartsBar = "at most 0.67";
constexpr const char* kNoBar = "-";
constexpr std::size_t kBlocksInPart = 8192;
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

/// `files` files: a tenth of them in one folder, the rest in folders of up to `mostInFolder`, each
/// with a few subfolders.
void makeTree(FileTree* tree, std::size_t files, std::size_t mostInFolder, double sizeSpread) {
  TreeMaker maker(tree, sizeSpread);
  std::vector<NodeId> folders = maker.fill(sizewalk::kRootNode, 10, 20);
  maker.fill(folders.back(), files / 10, 0);
  folders.pop_back();
  std::size_t left = files - files / 10 - 10;
  for (std::size_t next = 0; left > 0; ++next) {
    const std::size_t count = std::min(left, maker.uniform(0, mostInFolder));
    left -= count;
    for (const NodeId folder : maker.fill(folders[next], count, maker.uniform(1, 4))) {
      folders.push_back(folder);
    }
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

std::vector<TreemapBlock> layOut(const FileTree& tree) {
  std::vector<TreemapBlock> blocks;
  app::layoutTreemap(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, 0, kMeasure, {}, {},
                     app::kRidgeHeight, &blocks);
  return blocks;
}

void report(const std::string& question, const bench::PairedTiming& timing, const char* bar) {
  bench::printRow(question, bench::milliseconds(timing.candidateMs),
                  bench::milliseconds(timing.baselineMs), bench::times(1 / timing.speedup), bar);
}

void benchLayout(const FileTree& tree, const std::string& what) {
  std::vector<TreemapBlock> blocks = layOut(tree);
  const std::vector<TreemapBlock> laidOut = blocks;
  std::vector<app::WeightedItem> entries;
  double check = 0;
  const auto baseline = [&] { check += sumAndSort(tree, laidOut, &entries); };
  const auto layout = [&] {
    blocks.clear();
    app::layoutTreemap(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, 0, kMeasure, {}, {},
                       app::kRidgeHeight, &blocks);
  };
  report("Treemap layout, " + what + ", against summing and sorting alone",
         bench::timePaired(kPairs, baseline, layout), kLayoutBar);
  if (check < 0) std::abort();  // never; it makes the sums count
}

/// Lays out part after part as a render does, each into memory of its own.
void layOutParts(const FileTree& tree, std::vector<std::vector<TreemapBlock>>* blocks) {
  const app::LayoutParts parts(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, kMeasure, {},
                               kBlocksInPart);
  blocks->resize(parts.count());
  app::forEachOnThreads(parts.count(), app::hardwareThreads(), [&](std::size_t part) {
    std::vector<app::RestSum> rests;
    (*blocks)[part].clear();
    parts.layOut(part, &(*blocks)[part], &rests);
  });
}

void benchParts(const FileTree& tree, const std::string& what) {
  std::vector<TreemapBlock> whole;
  std::vector<app::RestSum> rests;
  const auto inOne = [&] {
    whole.clear();
    rests.clear();
    app::layoutTreemap(tree, sizewalk::kRootNode, {0, 0, kWidth, kHeight}, 0, kMeasure, {}, {},
                       app::kRidgeHeight, &whole, &rests);
  };
  std::vector<std::vector<TreemapBlock>> parts;
  report("Treemap layout, " + what + ", in parts on all processors, against in one",
         bench::timePaired(kPairs, inOne, [&] { layOutParts(tree, &parts); }), kPartsBar);
}

/// The two images of a map, with the memory that they lie in.
class ImageMemory {
 public:
  app::MapImage image() { return {pixels_.data(), blockAt_.data(), kWidth, kHeight}; }
  friend bool operator==(const ImageMemory&, const ImageMemory&) = default;

 private:
  std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(std::size_t{kWidth} * kHeight);
  std::vector<std::uint32_t> blockAt_ = pixels_;
};

void benchShading(const FileTree& tree, const std::string& what) {
  const app::KindColours kinds(true);
  const std::vector<TreemapBlock> blocks = layOut(tree);
  std::vector<std::uint32_t> colours;
  colours.reserve(blocks.size());
  for (const TreemapBlock& block : blocks) {
    colours.push_back(kinds.colourForKind(tree.kind(static_cast<NodeId>(block.id))));
  }
  std::vector<app::RunRows> rows(app::runCount(blocks.size()));
  app::findRunRows(blocks, rows);
  const app::BlockSequence sequence = {blocks, colours, rows};
  ImageMemory memory;
  const auto plain = [&] { bench::shadePlainly(blocks, colours, memory.image()); };
  const auto shading = [&](unsigned threads) {
    const bench::PairedTiming timing = bench::timePaired(kPairs, plain, [&] {
      app::clearImage(memory.image(), threads);
      app::shadeBlocks({&sequence, 1}, memory.image(), threads);
    });
    const ImageMemory shaded = memory;
    plain();
    if (shaded != memory) throw std::runtime_error("the plain loop makes another picture");
    return timing;
  };
  const std::string question = "Treemap shading, " + what + ", ";
  report(question + "against the plain loop", shading(app::hardwareThreads()), kShadingBar);
  report(question + "on one thread, against the plain loop", shading(1), kNoBar);
}

void benchRender(const FileTree& tree, const std::string& what) {
  const app::KindColours colours(true);
  app::RenderedTreemap last;
  const auto fresh = [&] {
    app::renderTreemap(tree, sizewalk::kRootNode, kWidth, kHeight, colours, {}, kMeasure);
  };
  const auto recycled = [&] {
    last = app::renderTreemap(tree, sizewalk::kRootNode, kWidth, kHeight, colours, {}, kMeasure,
                              std::move(last));
  };
  report("Whole treemap render, " + what + ", in recycled memory against fresh",
         bench::timePaired(kPairs, fresh, recycled), kNoBar);
}

void benchTree(const FileTree& tree, const std::string& what) {
  benchLayout(tree, what);
  benchParts(tree, what);
  benchShading(tree, what);
  benchRender(tree, what);
}

void benchMadeUpTree(const std::string& what, std::size_t mostInFolder, double sizeSpread) {
  FileTree tree;
  makeTree(&tree, 1000000, mostInFolder, sizeSpread);
  benchTree(tree, what);
}

/// The tree that the walk is measured on.
void benchScannedTree() {
  const bench::MillionFiles files;
  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(files.path());
  scanner.walk(sizewalk::kRootNode);
  benchTree(scanner.tree(), "a million files in tmpfs");
}

/// Nanoseconds for each entry of a tree.
struct CostOfEntry {
  double layout = 0;
  double render = 0;
};

CostOfEntry costOfEntry(const FileTree& tree) {
  const app::KindColours colours(true);
  std::vector<std::vector<TreemapBlock>> parts;
  app::RenderedTreemap last;
  std::vector<double> layouts;
  std::vector<double> renders;
  for (std::size_t i = 0; i < kPairs; ++i) {
    layouts.push_back(bench::timeMs([&] { layOutParts(tree, &parts); }));
    renders.push_back(bench::timeMs([&] {
      last = app::renderTreemap(tree, sizewalk::kRootNode, kWidth, kHeight, colours, {}, kMeasure,
                                std::move(last));
    }));
  }
  const double perEntry = 1e6 / static_cast<double>(tree.nodeCount());
  return {bench::median(layouts) * perEntry, bench::median(renders) * perEntry};
}

void reportGrowth(const std::string& what, const CostOfEntry& cost, const CostOfEntry& least) {
  const auto row = [&](const char* step, double ours, double other) {
    bench::printRow(std::string(step) + " for each entry, " + what + ", against 100,000 files",
                    bench::nanoseconds(ours), bench::nanoseconds(other), bench::times(ours / other),
                    kNoBar);
  };
  row("Treemap layout", cost.layout, least.layout);
  row("Whole treemap render", cost.render, least.render);
}

void benchGrowth() {
  const auto costOf = [](std::size_t files) {
    FileTree tree;
    makeTree(&tree, files, 400, 1.5);
    return costOfEntry(tree);
  };
  const CostOfEntry least = costOf(100000);
  for (const std::size_t files : {300000U, 1000000U, 3000000U}) {
    reportGrowth(std::to_string(files / 1000) + ",000 files", costOf(files), least);
  }
  FileTree tree;
  TreeMaker(&tree, 1.5).fill(sizewalk::kRootNode, 1000000, 0);
  reportGrowth("a million files in one folder", costOfEntry(tree), least);
}

}  // namespace

int main() {
  benchScannedTree();
  benchMadeUpTree("a million made-up files of like size", 400, 0.5);
  benchMadeUpTree("a million made-up files of mixed size", 400, 1.5);
  benchMadeUpTree("a million made-up files in small folders", 12, 1.5);
  benchGrowth();
  return 0;
}
