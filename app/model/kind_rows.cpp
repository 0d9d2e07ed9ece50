#include "app/model/kind_rows.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "sizewalk/file_kinds.h"

namespace app {

namespace {

std::uint64_t sizeUnder(const sizewalk::KindTotals& totals, const MeasureSettings& measure) {
  switch (measure.measure) {
    case Measure::AddedLastMonth:
      return totals.addedLastMonth;
    case Measure::AddedLastSixMonths:
      return totals.addedLastSixMonths;
    case Measure::AddedSinceLastScan:
      return totals.addedSinceLastScan;
    case Measure::CurrentSize:
      break;
  }
  return measure.physicalSize ? totals.allocatedSize : totals.apparentSize;
}

std::string_view columnName(KindColumn column) {
  switch (column) {
    case KindColumn::Kind:
      return "Kind";
    case KindColumn::Size:
      return "Size";
    case KindColumn::Files:
      return "Files";
  }
  return {};
}

/// Below 0 when `a` belongs before `b` in ascending order of the column, 0 when they are equal
/// there.
int compare(const KindRow& a, const KindRow& b, KindColumn column) {
  const auto threeWay = [](const auto& x, const auto& y) { return x < y ? -1 : y < x ? 1 : 0; };
  switch (column) {
    case KindColumn::Kind:
      return threeWay(kindRowName(a.kind), kindRowName(b.kind));
    case KindColumn::Size:
      return threeWay(a.size, b.size);
    case KindColumn::Files:
      return threeWay(a.files, b.files);
  }
  return 0;
}

}  // namespace

KindSort KindSort::afterPress(KindColumn pressed) const {
  if (pressed == column) return {column, !ascending};
  return {pressed, pressed == KindColumn::Kind};
}

std::string kindHeader(KindColumn column, const KindSort& sort) {
  std::string header(columnName(column));
  if (column == sort.column) header += sort.ascending ? "  ▴" : "  ▾";
  return header;
}

std::string kindRowName(sizewalk::KindIndex kind) {
  const bool listed = kind < sizewalk::kindCount();
  return std::string(sizewalk::kindName(listed ? kind : sizewalk::otherKind));
}

void sortKindRows(std::span<KindRow> rows, const KindSort& sort) {
  std::ranges::sort(rows, [&sort](const KindRow& a, const KindRow& b) {
    const int order = compare(a, b, sort.column);
    if (order != 0) return sort.ascending ? order < 0 : order > 0;
    return compare(a, b, KindColumn::Kind) < 0;
  });
}

std::vector<KindRow> kindRows(const sizewalk::FileTree& tree, const MeasureSettings& measure,
                              const KindSort& sort) {
  std::vector<KindRow> rows;
  for (sizewalk::KindIndex kind = 0; kind < sizewalk::kindCount(); ++kind) {
    const sizewalk::KindTotals totals = tree.kindTotals(kind);
    if (totals.count == 0) continue;
    rows.push_back({kind, sizeUnder(totals, measure), static_cast<std::int64_t>(totals.count)});
  }
  sortKindRows(rows, sort);
  return rows;
}

KindColours::Slots kindSlotsBySize(std::span<const KindRow> rows) {
  std::vector<KindRow> bySize(rows.begin(), rows.end());
  std::ranges::stable_sort(bySize, std::greater<>(), &KindRow::size);
  KindColours::Slots slots;
  for (const KindRow& row : bySize) slots[row.kind] = static_cast<std::int32_t>(slots.size());
  return slots;
}

}  // namespace app
