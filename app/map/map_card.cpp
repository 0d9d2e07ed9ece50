#include "app/map/map_card.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

#include "app/model/format.h"
#include "app/model/kind_rows.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::NodeId;

namespace {

std::string sizeText(std::uint64_t bytes) { return formatSize(signedSize(bytes)); }

/// The measures in title case, as headings have them.
constexpr std::array<const char*, 4> kMeasureHeadings = {
    "Current Size", "Added in Last Month", "Added in Last 6 Months", "Added Since Last Scan"};

class CardBuilder {
 public:
  CardBuilder(const RenderedTreemap& map, const FileTree& tree, const MeasureSettings& measure)
      : map_(map), tree_(tree), measure_(measure) {}

  /// From the map alone: the tree may have grown since, and looking at a million children takes
  /// longer than a frame.
  MapCard ofRest(const PictureBlock& block) {
    card_.title = formatCount(block.restCount) + " smaller items";
    addFolder(tree_.parent(static_cast<NodeId>(block.id)));
    const std::int64_t size = map_.restSize(block);
    add("Size", formatSize(size));
    addShare(size, map_.rootSize);
    return card_;
  }

  MapCard ofNode(NodeId node) {
    card_.title = displayName(tree_.name(node));
    card_.swatch = map_.kindColours.colourForKind(tree_.kind(node));
    if (node != sizewalk::kRootNode) addFolder(tree_.parent(node));
    addSizes(node);
    addShare(measureValue(tree_, node, measure_), measureValue(tree_, map_.root, measure_));
    add("Kind", kindRowName(tree_.kind(node)));
    if (tree_.flags(node).has(sizewalk::NodeFlag::Unreadable)) add("Note", "Cannot be read");
    if (const std::uint32_t time = tree_.birthTime(node)) add("Added", dateText(time));
    return card_;
  }

 private:
  void add(std::string label, std::string text) {
    card_.facts.push_back({std::move(label), std::move(text)});
  }

  void addFolder(NodeId folder) {
    card_.facts.push_back({"Folder", displayName(tree_.path(folder)), MapCard::Keeps::End});
  }

  void addSizes(NodeId node) {
    const std::string onDisk = sizeText(tree_.allocatedSize(node));
    const std::string length = sizeText(tree_.apparentSize(node));
    add(onDisk == length ? "Size" : "Size on disk", onDisk);
    if (onDisk != length) add("Length", length);
    if (measure_.measure == Measure::CurrentSize) return;
    add(kMeasureHeadings[static_cast<std::size_t>(measure_.measure)],
        formatSize(measureValue(tree_, node, measure_)));
  }

  void addShare(std::int64_t size, std::int64_t whole) {
    card_.facts.push_back(
        {"Share", shareText(size, whole) + " of “" + displayName(tree_.name(map_.root)) + "”",
         MapCard::Keeps::BeginningAndQuote});
  }

  const RenderedTreemap& map_;
  const FileTree& tree_;
  const MeasureSettings& measure_;
  MapCard card_;
};

MapCard cardOfExtra(const ExtraBlock& extra) {
  return {extra.label, {{"Size", formatSize(extra.size)}}};
}

}  // namespace

MapCard mapCard(const RenderedTreemap& map, const PictureBlock& block, const FileTree& tree,
                const MeasureSettings& measure) {
  const auto extra = map.extraColours.find(block.id);
  if (extra != map.extraColours.end()) return cardOfExtra(extra->second);
  CardBuilder builder(map, tree, measure);
  return block.restCount > 0 ? builder.ofRest(block)
                             : builder.ofNode(static_cast<NodeId>(block.id));
}

std::string shareText(std::int64_t part, std::int64_t whole) {
  if (whole <= 0 || part <= 0) return "0 %";
  // A running scan adds to a folder before it adds to those around it.
  const double share = std::min(1.0, static_cast<double>(part) / static_cast<double>(whole));
  // Tenths, so that no locale's decimal comma gets in.
  const auto tenths = static_cast<std::int64_t>(share * 1000 + 0.5);
  if (tenths == 0) return "less than 0.1 %";
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " %";
}

std::string dateText(std::uint32_t seconds) {
  const std::time_t time = seconds;
  std::tm local{};
  if (!localtime_r(&time, &local)) return {};
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
  return text.data();
}

}  // namespace app
