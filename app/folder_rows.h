#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

#include "app/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// One line of the folder list.
struct FolderRow {
  sizewalk::NodeId node = 0;
  /// 0 for the scanned folder.
  std::int32_t depth = 0;
  /// The row can be opened: a folder in which something is to be seen.
  bool expandable = false;
  bool expanded = false;
  friend bool operator==(const FolderRow&, const FolderRow&) = default;
};

/// What the folder list shows, in display order: the scanned folder, open at first, and below every
/// open folder its contents, one level deeper, the largest under the current measure first and
/// equal ones by name. What is taken out of the tree has no row.
///
/// Open folders are remembered by node, so that they stay open while rows come, go and change
/// places. Window thread only; the tree may grow meanwhile, and rows follow with the next
/// `refresh`.
class FolderRows {
 public:
  /// Shows `tree`, with the scanned folder open and all others closed; nothing when it is null.
  void show(const sizewalk::FileTree* tree);
  void setMeasure(const MeasureSettings& measure);
  /// Looks at the tree anew.
  void refresh();

  std::span<const FolderRow> rows() const { return rows_; }
  /// Where `node` is shown; nothing when it has no row.
  std::optional<std::size_t> find(sizewalk::NodeId node) const;

  /// Opens or closes a row; does nothing where it cannot be, or is already. A folder that was open
  /// inside a closed one is open again when that is opened.
  void open(std::size_t row);
  void close(std::size_t row);
  /// Opens every folder on the way to `node` and returns its row; nothing when the tree does not
  /// lead to it.
  std::optional<std::size_t> reveal(sizewalk::NodeId node);

 private:
  FolderRow rowFor(sizewalk::NodeId node, std::int32_t depth) const;
  /// The rows of all that is to be seen below an open row, which is not among them.
  std::vector<FolderRow> rowsBelow(const FolderRow& row) const;
  std::vector<sizewalk::NodeId> contents(sizewalk::NodeId folder) const;

  const sizewalk::FileTree* tree_ = nullptr;
  MeasureSettings measure_;
  std::unordered_set<sizewalk::NodeId> open_;
  std::vector<FolderRow> rows_;
};

}  // namespace app
