#pragma once

#include <cstdint>
#include <vector>

#include "app/map/treemap_layout.h"

namespace app {

/// Puts one folder's entries into groups and the groups in order, for folder after folder: the
/// memory is kept from one to the next. One thread.
class EntryGroups {
 public:
  EntryGroups();

  /// Forgets all entries.
  void clear();

  /// Puts an entry into the group with that key. Keys are plain numbers and mean nothing here.
  void add(std::int32_t key, const WeightedItem& entry);

  /// Sets `out` to all entries: group by group, the group with the largest sum first, and within
  /// each the largest entry first. Sums are added up in the order in which the entries came. Equal
  /// groups stand in the order of their first entries, equal entries in ascending order of id.
  void arrange(std::vector<WeightedItem>* out);

 private:
  struct Group {
    std::int32_t key;
    std::uint32_t count;
    double weight;
    std::uint32_t start;
  };
  struct Member {
    WeightedItem entry;
    std::uint32_t group;
  };
  /// A cell of the hash table belongs to the current folder when it bears its number.
  struct Cell {
    std::uint32_t folder = 0;
    std::uint32_t group = 0;
  };

  std::uint32_t groupOf(std::int32_t key);
  std::size_t cellOf(std::int32_t key) const;
  void grow();

  std::vector<Cell> cells_;
  std::uint32_t folder_ = 1;
  std::vector<Group> groups_;
  std::vector<Member> members_;
  std::vector<std::uint32_t> order_;
};

}  // namespace app
