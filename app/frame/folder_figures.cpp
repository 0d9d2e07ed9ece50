#include "app/frame/folder_figures.h"

#include "app/model/format.h"

namespace app {

std::optional<FolderFigures> folderFigures(const sizewalk::FileTree& tree, sizewalk::NodeId folder,
                                           const MeasureSettings& measure) {
  if (folder >= tree.nodeCount()) return std::nullopt;
  // Counted without a sign, so that the tree may hold more than fit with one.
  const auto items = static_cast<std::uint32_t>(tree.itemCount(folder));
  return FolderFigures{measureValue(tree, folder, measure), items};
}

std::vector<std::string> figuresTexts(const FolderFigures& figures) {
  const std::string size = formatSize(figures.size);
  const std::string items = formatCount(figures.items) + (figures.items == 1 ? " item" : " items");
  return {size + " · " + items, size};
}

}  // namespace app
