#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/model/measure.h"
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
  /// The rows that `refresh` would make, for `take`.
  std::vector<FolderRow> look();
  void take(std::vector<FolderRow> rows) { rows_ = std::move(rows); }
  /// Brings the rows up to date in their order, with none added. False, and nothing is changed,
  /// when one of them is to be seen no more.
  bool refreshInPlace();

  std::span<const FolderRow> rows() const { return rows_; }
  /// Where `node` is shown; nothing when it has no row. Looks at all rows.
  std::optional<std::size_t> find(sizewalk::NodeId node) const;
  /// True when `node` has a row once `refresh` has looked at the tree as it is now: it is visible
  /// and only open folders lead to it.
  bool leadsTo(sizewalk::NodeId node) const;

  /// Opens or closes a row; does nothing where it cannot be, or is already. What is
  /// not visible any more cannot be opened. A folder that was open inside a closed one is open
  /// again when that is opened.
  void open(std::size_t row);
  void close(std::size_t row);
  // With effect from the next `refresh`, on folders that have a row by then.
  void closeAll() { open_.clear(); }
  void open(std::span<const sizewalk::NodeId> folders) {
    open_.insert(folders.begin(), folders.end());
  }
  const std::unordered_set<sizewalk::NodeId>& openFolders() const { return open_; }
  /// Opens every folder on the way to `node` and returns its row; opens and returns nothing when it
  /// is not visible.
  std::optional<std::size_t> reveal(sizewalk::NodeId node);

 private:
  FolderRow rowFor(sizewalk::NodeId node, std::int32_t depth) const;
  /// All that an open folder holds, taken out or not. Kept from one refresh to the next: of a
  /// million entries only the folders among them change while a walk goes on.
  struct Contents {
    sizewalk::NodeRange children;
    MeasureSettings measure;
    /// By child, its size as it was last read: a walk that goes on changes the tree's own at any
    /// time, under the hands of a sort too.
    std::vector<std::int64_t> values;
    /// The children in display order.
    std::vector<sizewalk::NodeId> order;

    std::int64_t valueOf(sizewalk::NodeId node) const { return values[node - children.first]; }
  };

  /// Appends the rows of all that is to be seen below an open row, which is not among them.
  void appendRowsBelow(const FolderRow& row, std::vector<FolderRow>* rows);
  const Contents& contents(sizewalk::NodeId folder);
  void collect(Contents& contents) const;
  void bringUpToDate(Contents& contents) const;
  void sort(const Contents& contents, std::span<sizewalk::NodeId> nodes) const;
  void sortByName(std::span<sizewalk::NodeId> nodes) const;

  const sizewalk::FileTree* tree_ = nullptr;
  MeasureSettings measure_;
  std::unordered_set<sizewalk::NodeId> open_;
  std::unordered_map<sizewalk::NodeId, Contents> contents_;
  std::vector<FolderRow> rows_;
};

}  // namespace app
