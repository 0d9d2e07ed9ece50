#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// How much the folder in focus holds, as the toolbar tells behind its name.
struct FolderFigures {
  /// Bytes, under the measure that is shown.
  std::int64_t size = 0;
  /// Files and links in it and in all folders below.
  std::int64_t items = 0;
  bool operator==(const FolderFigures&) const = default;
};

/// Those of `folder` as far as the tree has been filled; nothing while the tree does not hold it.
/// Takes no time worth mentioning: the sums are in the tree.
std::optional<FolderFigures> folderFigures(const sizewalk::FileTree& tree, sizewalk::NodeId folder,
                                           const MeasureSettings& measure);

/// As text, such as "1.20 GB · 12,345 items", and for less room the size alone.
std::vector<std::string> figuresTexts(const FolderFigures& figures);

}  // namespace app
