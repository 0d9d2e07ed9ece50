#include "app/map/entry_groups.h"

#include <algorithm>
#include <numeric>

namespace app {

namespace {

constexpr std::size_t kInitialCells = 256;  // a power of two

/// An object, not a function: its calls within a sort are inlined.
constexpr auto kComesBefore = [](const WeightedItem& a, const WeightedItem& b) {
  return a.weight != b.weight ? a.weight > b.weight : a.id < b.id;
};

/// Most folders and groups are short, and there the plainest sort is the fastest.
template <typename Iterator, typename Before>
void sortShortOrLong(Iterator first, Iterator last, Before before) {
  constexpr std::ptrdiff_t kShort = 12;
  if (last - first > kShort) {
    std::sort(first, last, before);
    return;
  }
  for (Iterator next = first; next != last; ++next) {
    const auto value = *next;
    Iterator hole = next;
    for (; hole != first && before(value, hole[-1]); --hole) *hole = hole[-1];
    *hole = value;
  }
}

}  // namespace

EntryGroups::EntryGroups() : cells_(kInitialCells) {}

void EntryGroups::clear() {
  groups_.clear();
  members_.clear();
  // Numbering the folders empties the table without touching it; most folders use a handful of
  // cells.
  if (++folder_ == 0) {
    std::fill(cells_.begin(), cells_.end(), Cell{});
    folder_ = 1;
  }
}

void EntryGroups::add(std::int32_t key, const WeightedItem& entry) {
  const std::uint32_t index = groupOf(key);
  groups_[index].weight += entry.weight;
  ++groups_[index].count;
  members_.push_back({entry, index});
}

void EntryGroups::arrange(std::vector<WeightedItem>* out) {
  order_.resize(groups_.size());
  std::iota(order_.begin(), order_.end(), 0U);
  sortShortOrLong(order_.begin(), order_.end(), [this](std::uint32_t a, std::uint32_t b) {
    return groups_[a].weight != groups_[b].weight ? groups_[a].weight > groups_[b].weight : a < b;
  });
  std::uint32_t start = 0;
  for (const std::uint32_t index : order_) {
    groups_[index].start = start;
    start += groups_[index].count;
  }
  out->resize(members_.size());
  for (const Member& member : members_) (*out)[groups_[member.group].start++] = member.entry;
  for (const Group& group : groups_) {
    const auto end = out->begin() + group.start;  // moved there by the distribution
    sortShortOrLong(end - group.count, end, kComesBefore);
  }
}

std::uint32_t EntryGroups::groupOf(std::int32_t key) {
  std::size_t cell = cellOf(key);
  if (cells_[cell].folder == folder_) return cells_[cell].group;
  if (groups_.size() * 2 >= cells_.size()) {
    grow();
    cell = cellOf(key);
  }
  const auto index = static_cast<std::uint32_t>(groups_.size());
  cells_[cell] = {folder_, index};
  groups_.push_back({key, 0, 0.0, 0});
  return index;
}

/// The cell that holds `key`, or the free one where it belongs.
std::size_t EntryGroups::cellOf(std::int32_t key) const {
  const std::size_t mask = cells_.size() - 1;
  // Folders are complements of neighbouring indices and kinds are small numbers: one odd multiplier
  // spreads both.
  std::size_t cell = (static_cast<std::uint32_t>(key) * 0x9E3779B97F4A7C15U) >> 32 & mask;
  while (cells_[cell].folder == folder_ && groups_[cells_[cell].group].key != key) {
    cell = (cell + 1) & mask;
  }
  return cell;
}

void EntryGroups::grow() {
  cells_.assign(cells_.size() * 2, Cell{});
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    cells_[cellOf(groups_[i].key)] = {folder_, static_cast<std::uint32_t>(i)};
  }
}

}  // namespace app
