#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// One line of the kinds table.
struct KindRow {
  sizewalk::KindIndex kind = 0;
  /// Bytes under the current measure.
  std::uint64_t size = 0;
  std::int64_t files = 0;
  friend bool operator==(const KindRow&, const KindRow&) = default;
};

/// The columns of the table, by the numbers that sorting goes by.
enum class KindColumn : std::uint8_t { Kind = 0, Size = 1, Files = 2 };

/// By which column the table is sorted, and which way. It begins with the largest size.
struct KindSort {
  KindColumn column = KindColumn::Size;
  bool ascending = false;
  friend bool operator==(const KindSort&, const KindSort&) = default;

  /// The order after a press on a header: the other way round on the column it goes by already;
  /// else by that column, names from A to Z, sizes and counts from the largest.
  KindSort afterPress(KindColumn pressed) const;
};

/// "Kind", "Size" or "Files", with an arrow on the column that the table is sorted by.
std::string kindHeader(KindColumn column, const KindSort& sort);

/// What the table calls a kind: "Other" for an index outside the list.
std::string kindRowName(sizewalk::KindIndex kind);

/// Puts rows into the order asked for; equal ones by name.
void sortKindRows(std::span<KindRow> rows, const KindSort& sort);

/// A row for each kind of which the tree holds a file, in the order asked for. Any thread.
std::vector<KindRow> kindRows(const sizewalk::FileTree& tree, const MeasureSettings& measure,
                              const KindSort& sort);

/// Ranks for `KindColours`: the kind that takes most first.
KindColours::Slots kindSlotsBySize(std::span<const KindRow> rows);

}  // namespace app
